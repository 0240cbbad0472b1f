// Two parts of a program open the same file and share one surface. Neither knows of the other.

#include <cstdio>
#include <string>

#include "qeltin/models/CModelManager.h"
#include "qeltin/models/ITin.h"

namespace {

CModelManager& Manager() { return CModelManager::GetTinModelManager(); }

// Holds a surface for as long as it lives: what most hosts wrap around an ITin.
class Client {
 public:
  Client(char const* name, std::wstring const& path)
      : m_Name(name), m_pTin(Manager().CreateTin(path.c_str())) {
    Tell("opens it");
  }
  ~Client() {
    Manager().ReleaseTin(m_pTin);
    Tell("lets it go");
  }
  Client(Client const&) = delete;
  Client& operator=(Client const&) = delete;

  ITin* Tin() const { return m_pTin; }

 private:
  void Tell(char const* what) const {
    std::printf("%s %s, models: %ld\n", m_Name, what, Manager().GetNumberOfModels());
  }

  char const* m_Name;
  ITin* m_pTin;
};

}  // namespace

int main() {
  Client const chart("the chart", L"harbour.tin");
  if (chart.Tin() == nullptr) return 1;
  {
    Client const pilot("the pilot", L"harbour.tin");
    std::printf("they hold %s\n", chart.Tin() == pilot.Tin() ? "one surface" : "two surfaces");

    // What one adds, the other sees: here the top of a rock that a diver found.
    pilot.Tin()->AddPoint(151.3, 87.2, -2.1);
  }
  double z = 0.0;
  if (chart.Tin()->GetZ(151.3, 87.2, &z)) std::printf("the chart finds the rock at %.1f\n", z);

  // Names are compared letter by letter: another spelling is another model, read anew.
  Client const visitor("a visitor", L"./harbour.tin");
  if (visitor.Tin() == nullptr) return 1;
  visitor.Tin()->GetZ(151.3, 87.2, &z);
  std::printf("the file knows %.1f\n", z);
  for (long i = 0; i < Manager().GetNumberOfModels(); ++i) {
    std::printf("model %ld: %ls\n", i, Manager().GetModelName(i));
  }
  return 0;
}
