#include "testing/reference/TwinScript.h"

#include <cmath>
#include <limits>
#include <ostream>

namespace qeltin::testing {

namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double INF = std::numeric_limits<double>::infinity();

// Points of one kind in one place: on a lattice, on a line, on a circle, close together, or spread
// over the world box.
class PointSource {
 public:
  PointSource(Dice& dice, bool strangeHeights)
      : m_Dice(dice), m_bStrangeHeights(strangeHeights), m_iKind(dice.Below(6)) {
    if (dice.OneIn(2)) m_Frame = AT_UTM;
    m_dUnit = std::pow(10.0, dice.Below(7) - 3);
    m_iUnits = 2 + dice.Below(8);
  }

  TPoint Min() const { return {m_Frame.east, m_Frame.north, 0.0}; }
  TPoint Max() const { return {m_Frame.east + Side(), m_Frame.north + Side(), 1.0}; }

  TPoint Next() {
    TPoint const p = Local();
    return {p.x + m_Frame.east, p.y + m_Frame.north, Height()};
  }

  double Height() {
    if (m_bStrangeHeights && m_Dice.OneIn(20)) {
      double const strange[] = {NOT_A_NUMBER, INF, -INF, -0.0};
      return strange[m_Dice.Below(4)];
    }
    return m_Dice.OneIn(10) ? m_Dice.Unit() : m_Dice.Below(3);
  }

 private:
  double Side() const { return m_iUnits * m_dUnit; }

  TPoint Local() {
    switch (m_iKind) {
      case 0:
        return {Node(), Node()};
      case 1:
        return {m_Dice.Unit() * Side(), m_Dice.Unit() * Side()};
      case 2: {
        double const t = m_Dice.Unit() * Side();
        return {t, 0.37 * t};
      }
      case 3:
        return {Node() + 0.0004 * m_Dice.Below(5), Node() + 0.0004 * m_Dice.Below(5)};
      case 4: {
        double const angle = m_Dice.Below(12) * 0.5235987755982988;
        return {Side() * (0.5 + 0.5 * std::cos(angle)), Side() * (0.5 + 0.5 * std::sin(angle))};
      }
      default:
        return {m_Dice.Between(-6.0, 6.0) * Side(), m_Dice.Between(-6.0, 6.0) * Side()};
    }
  }

  double Node() { return m_Dice.Below(m_iUnits + 1) * m_dUnit; }

  Dice& m_Dice;
  bool m_bStrangeHeights;
  int m_iKind;
  Frame m_Frame = AT_ORIGIN;
  double m_dUnit;
  int m_iUnits;
};

TwinCall::Kind DrawKind(Dice& dice, TwinScript::Shares const& shares) {
  struct {
    TwinCall::Kind kind;
    int share;
  } const choices[] = {
      {TwinCall::AddFrom, shares.addFrom},        {TwinCall::Find, shares.find},
      {TwinCall::CutOff, shares.cutOff},          {TwinCall::Release, shares.release},
      {TwinCall::SetHeight, shares.setHeight},    {TwinCall::BuildMap, shares.buildMap},
      {TwinCall::TakeOut, shares.takeOut},        {TwinCall::RemoveAll, shares.removeAll},
      {TwinCall::SaveAndLoad, shares.saveAndLoad}};
  int total = 100;
  for (auto const& choice : choices) total += choice.share;
  int drawn = dice.Below(total) - 100;
  for (auto const& choice : choices) {
    if (drawn < 0) break;
    if (drawn < choice.share) return choice.kind;
    drawn -= choice.share;
  }
  return TwinCall::Add;
}

void Make(TwinCall const& call, Twin& twin) {
  int const triangles = twin.Tin().GetNumberOfTriangles();
  int const points = twin.Tin().GetNumberOfPoints();
  bool const onTriangle = call.kind == TwinCall::AddFrom || call.kind == TwinCall::CutOff ||
                          call.kind == TwinCall::Release;
  if (onTriangle && triangles == 0) return;
  if (call.kind != TwinCall::Add && points == 0) return;
  switch (call.kind) {
    case TwinCall::Add:
      return twin.AddPoint(call.p);
    case TwinCall::AddFrom:
      return twin.AddFrom(call.p, call.position % triangles);
    case TwinCall::Find:
      return twin.Query(call.p);
    case TwinCall::CutOff:
      return twin.RemoveTriangle(call.position % triangles, false);
    case TwinCall::Release:
      return twin.RemoveTriangle(call.position % triangles, true);
    case TwinCall::SetHeight:
      return twin.SetHeight(call.position % points, call.p.z);
    case TwinCall::BuildMap:
      return twin.BuildPointMap();
    case TwinCall::TakeOut:
      if (twin.HasMap()) twin.RemovePoint(call.position % points);
      return;
    case TwinCall::RemoveAll:
      return twin.RemoveAllPoints();
    case TwinCall::SaveAndLoad:
      return twin.SaveAndLoad(call.position % 3 == 0 && triangles > 0 ? call.position % triangles
                                                                      : -1);
  }
}

}  // namespace

TwinScript TwinScript::Draw(Dice& dice, Shares const& shares) {
  PointSource source(dice, shares.heightsWithoutNumbers);
  TwinScript script;
  script.points = 20 + dice.Below(100);
  script.min = source.Min();
  script.max = source.Max();
  int const calls = 10 + dice.Below(150);
  for (int i = 0; i < calls; ++i) {
    TwinCall::Kind const kind = DrawKind(dice, shares);
    TPoint const p = source.Next();
    script.calls.push_back({kind, p, dice.Below(1 << 24)});
  }
  return script;
}

std::string TwinScript::Play(Twin& twin) const {
  twin.Init(points, min, max);
  for (TwinCall const& call : calls) {
    if (twin.IsStopped() || !twin.Fault().empty()) break;
    Make(call, twin);
  }
  twin.Compare();
  return twin.Fault();
}

std::string TwinScript::Play() const {
  Twin twin;
  return Play(twin);
}

TwinScript TwinScript::Shrunk() const {
  TwinScript best = *this;
  for (bool again = true; again;) {
    again = false;
    for (std::size_t i = best.calls.size(); i-- > 0;) {
      TwinScript shorter = best;
      shorter.calls.erase(shorter.calls.begin() + static_cast<std::ptrdiff_t>(i));
      if (shorter.Play().empty()) continue;
      best = shorter;
      again = true;
    }
  }
  return best;
}

std::ostream& operator<<(std::ostream& out, TwinScript const& script) {
  static constexpr char const* NAMES[] = {"Add",       "AddFrom",    "Find",     "CutOff",
                                          "Release",   "SetHeight",  "BuildMap", "TakeOut",
                                          "RemoveAll", "SaveAndLoad"};
  out.precision(17);
  out << "Init(" << script.points << ", (" << script.min.x << ", " << script.min.y << "), ("
      << script.max.x << ", " << script.max.y << "))\n";
  for (TwinCall const& call : script.calls) {
    out << NAMES[call.kind] << " (" << call.p.x << ", " << call.p.y << ", " << call.p.z
        << ") position " << call.position << "\n";
  }
  return out;
}

}  // namespace qeltin::testing
