#pragma once

#include <string>
#include <utility>
#include <vector>

#include "qeltin/models/CProfile.h"
#include "qeltin/models/CTin.h"

namespace qeltin::testing {

// The names of models that have ended, in that order.
using Ends = std::vector<std::string>;

// A model that tells of its end.
template <typename Model>
class Watched : public Model {
 public:
  Watched(std::string name, Ends& ends) : m_Name(std::move(name)), m_Ends(ends) {}
  Watched(Watched const&) = delete;
  Watched& operator=(Watched const&) = delete;
  ~Watched() override { m_Ends.push_back(m_Name); }

 private:
  std::string m_Name;
  Ends& m_Ends;
};

using WatchedTin = Watched<CTin>;
using WatchedProfile = Watched<CProfile>;

// Return new models as the registry holds them.
inline void* NewTin(std::string name, Ends& ends) {
  return static_cast<ITin*>(new WatchedTin(std::move(name), ends));
}
inline void* NewProfile(std::string name, Ends& ends) {
  return static_cast<IProfile*>(new WatchedProfile(std::move(name), ends));
}

}  // namespace qeltin::testing
