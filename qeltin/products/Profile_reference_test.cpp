#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "qeltin/platform/Utf8.h"
#include "qeltin/products/TPolygon.h"
#include "qeltin/tin/TIN.h"
#include "testing/Formula.h"
#include "testing/HandMadeMesh.h"
#include "testing/MakeSurvey.h"
#include "testing/TINPeer.h"
#include "testing/TemporaryFolder.h"
#include "testing/reference/StatedProfile.h"

// Profiles against their plain version, bit by bit.

namespace {

using qeltin::testing::ALL_SURVEYS;
using qeltin::testing::Dice;
using qeltin::testing::Extent;
using qeltin::testing::ExtentOf;
using qeltin::testing::HandMadeMesh;
using qeltin::testing::MakeSurvey;
using qeltin::testing::Place;
using qeltin::testing::PLACES;
using qeltin::testing::SameBits;
using qeltin::testing::StatedProfile;
using qeltin::testing::Survey;
using qeltin::testing::TemporaryFolder;
using qeltin::testing::TestSeed;
using qeltin::testing::TINPeer;

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

// Lets two searches begin alike: at the same triangle, without an index, with the same chance.
class LocationState {
 public:
  explicit LocationState(TIN const& tin)
      : m_Location(TINPeer::Location(tin)),
        m_pCurrent(m_Location.m_pCurrent),
        m_iBest(m_Location.m_iBest) {}

  void Restore() {
    m_Location.ForgetIndex();
    m_Location.m_pCurrent = m_pCurrent;
    m_Location.m_iBest = m_iBest;
    std::srand(7);
  }

 private:
  Triangulator& m_Location;
  TTriangle* m_pCurrent;
  int m_iBest;
};

// A surface whose profiles are compared. Ends at the first difference.
class Comparison {
 public:
  explicit Comparison(TIN& tin) : m_Tin(tin) {}

  void Line(TPoint const& from, TPoint const& to) {
    if (!m_Fault.empty()) return;
    LocationState state(m_Tin);
    state.Restore();
    std::vector<TPolygon> profiles;
    int const count = m_Tin.GenerateProfile(profiles, from, to);
    state.Restore();
    StatedProfile stated(m_Tin);
    int const stated_count = stated.Generate(from, to);
    m_Ways += stated.Taken();
    std::vector<StatedProfile::Piece> pieces;
    for (TPolygon const& profile : profiles) pieces.push_back(PointsOf(profile));
    if (count != stated_count || !Equal(pieces, stated.Pieces())) Differ(from, to);
  }

  void Walk(TTriangle* first, TTriangle* last, TPoint const& from, TPoint const& to) {
    if (!m_Fault.empty()) return;
    TPolygon profile;
    bool const ended = TINPeer::SegProfile(m_Tin, profile, first, last, from, to);
    StatedProfile stated(m_Tin);
    StatedProfile::Piece piece;
    stated.GiveSteps();
    bool const stated_ended = stated.SegProfile(piece, first, last, from.x, from.y, to.x, to.y);
    if (ended != stated_ended || !Equal({PointsOf(profile)}, {piece})) Differ(from, to);
  }

  std::string const& Fault() const { return m_Fault; }
  StatedProfile::Ways const& Taken() const { return m_Ways; }

 private:
  static StatedProfile::Piece PointsOf(TPolygon const& polygon) {
    StatedProfile::Piece points;
    for (int i = 0; i < polygon.GetSize(); ++i) points.push_back(*polygon.Get(i));
    return points;
  }

  static bool Equal(std::vector<StatedProfile::Piece> const& a,
                    std::vector<StatedProfile::Piece> const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](auto const& p, auto const& q) {
      return std::equal(p.begin(), p.end(), q.begin(), q.end(),
                        [](TPoint const& s, TPoint const& t) { return bool(SameBits(s, t)); });
    });
  }

  void Differ(TPoint const& from, TPoint const& to) {
    char text[160];
    std::snprintf(text, sizeof text, "from (%.17g, %.17g) to (%.17g, %.17g)", from.x, from.y, to.x,
                  to.y);
    m_Fault = text;
  }

  TIN& m_Tin;
  std::string m_Fault;
  StatedProfile::Ways m_Ways;
};

// Lines of every kind over a surface.
class LineMaker {
 public:
  LineMaker(TIN& tin, Dice& dice) : m_Tin(tin), m_Dice(dice) {
    tin.GetBounds(m_Min, m_Max);
    tin.GetWorldBounds(m_WorldMin, m_WorldMax);
  }

  // One place at an end of a line.
  TPoint End() {
    switch (m_Dice.Below(10)) {
      case 0:
      case 1:
        return Vertex();
      case 2:
        return Jittered(Vertex());
      case 3:
        return OnSide();
      case 4:
        return Jittered(OnSide());
      case 5:
        return In(*Triangle());
      case 6:
        return Between(m_WorldMin, m_WorldMax);
      default:
        return Between(m_Min, m_Max);
    }
  }

  // The other end of a line from `from`: a place of its own, or one that lines up with things.
  TPoint Partner(TPoint const& from) {
    switch (m_Dice.Below(8)) {
      case 0:
        return Beyond(from, Vertex());
      case 1:
        return Beyond(from, Neighbour(from));
      case 2:
        return Neighbour(from);
      case 3:
        return {End().x, from.y};
      case 4:
        return {from.x, End().y};
      case 5:
        return TPoint(from.x + m_Dice.Below(9) - 4, from.y + m_Dice.Below(9) - 4);
      default:
        return End();
    }
  }

  // A place outside the world box, on it, or nowhere.
  TPoint FarEnd() {
    double const w = m_WorldMax.x - m_WorldMin.x;
    double const h = m_WorldMax.y - m_WorldMin.y;
    double const xs[] = {m_WorldMin.x,
                         m_WorldMax.x,
                         m_WorldMin.x - w * m_Dice.Unit(),
                         m_WorldMax.x + 40 * w * m_Dice.Unit(),
                         1e30,
                         -1e200,
                         Between(m_WorldMin, m_WorldMax).x,
                         End().x};
    double const ys[] = {m_WorldMin.y,
                         m_WorldMax.y,
                         m_WorldMin.y - h * m_Dice.Unit(),
                         m_WorldMax.y + 40 * h * m_Dice.Unit(),
                         1e30,
                         -1e200,
                         Between(m_WorldMin, m_WorldMax).y,
                         End().y};
    return {xs[m_Dice.Below(8)], ys[m_Dice.Below(8)]};
  }

  TPoint Nowhere() {
    double const bad[] = {NOT_A_NUMBER, INF, -INF, 1.7e308, -1.7e308};
    TPoint p = End();
    (m_Dice.OneIn(2) ? p.x : p.y) = bad[m_Dice.Below(5)];
    return p;
  }

  TTriangle* Triangle() { return m_Tin.GetTriangle(m_Dice.Below(Count()), true); }

 private:
  int Count() const { return m_Tin.GetNumberOfTriangles(); }
  TPoint Vertex() { return *Triangle()->m_pVertex[m_Dice.Below(3)]; }

  TPoint OnSide() {
    TTriangle const* const t = Triangle();
    int const side = m_Dice.Below(3);
    TPoint const& a = *t->m_pVertex[side];
    TPoint const& b = *t->m_pVertex[(side + 1) % 3];
    double const share = m_Dice.OneIn(3) ? 0.5 : m_Dice.Unit();
    return {a.x + share * (b.x - a.x), a.y + share * (b.y - a.y)};
  }

  TPoint Jittered(TPoint const& p) {
    double const offsets[] = {1e-12, 4e-10, 9e-10, 1e-9, 1.1e-9, 1e-3};
    double const by = offsets[m_Dice.Below(6)];
    return {p.x + by * (m_Dice.Below(3) - 1), p.y + by * (m_Dice.Below(3) - 1)};
  }

  TPoint In(TTriangle const& t) {
    double const a = m_Dice.Unit();
    double const b = (1 - a) * m_Dice.Unit();
    double const c = 1 - a - b;
    TPoint const* const* v = t.m_pVertex;
    return {a * v[0]->x + b * v[1]->x + c * v[2]->x, a * v[0]->y + b * v[1]->y + c * v[2]->y};
  }

  TPoint Between(TPoint const& min, TPoint const& max) {
    double const x = m_Dice.Between(min.x, max.x);
    return {x, m_Dice.Between(min.y, max.y)};
  }

  // A place on the line through both, behind the second.
  TPoint Beyond(TPoint const& from, TPoint const& through) {
    double const times = m_Dice.OneIn(2) ? 2.0 : 1.0 + 3 * m_Dice.Unit();
    return {from.x + times * (through.x - from.x), from.y + times * (through.y - from.y)};
  }

  // A vertex of a triangle that has `from` as a corner; any vertex where there is none.
  TPoint Neighbour(TPoint const& from) {
    TTriangle const* const t = m_Tin.GetTriangleWithPoint(from);
    if (t == nullptr) return Vertex();
    return *t->m_pVertex[m_Dice.Below(3)];
  }

  TIN& m_Tin;
  Dice& m_Dice;
  TPoint m_Min;
  TPoint m_Max;
  TPoint m_WorldMin;
  TPoint m_WorldMax;
};

void CompareLines(Comparison& comparison, LineMaker& lines, int count) {
  for (int i = 0; i < count; ++i) {
    TPoint const from = lines.End();
    comparison.Line(from, lines.Partner(from));
  }
}

void CompareFarLines(Comparison& comparison, LineMaker& lines, int count) {
  for (int i = 0; i < count; ++i) {
    comparison.Line(lines.End(), lines.FarEnd());
    comparison.Line(lines.FarEnd(), lines.End());
    comparison.Line(lines.FarEnd(), lines.FarEnd());
    comparison.Line(lines.End(), lines.Nowhere());
    comparison.Line(lines.Nowhere(), lines.End());
  }
}

// First and last as a caller may hand them over, related to the line or not.
void CompareWalks(Comparison& comparison, LineMaker& lines, TIN const& tin, int count) {
  for (int i = 0; i < count; ++i) {
    TPoint const from = lines.End();
    TPoint const to = lines.Partner(from);
    TTriangle* const first = tin.GetTriangleWithPoint(from);
    TTriangle* const last = tin.GetTriangleWithPoint(to);
    comparison.Walk(first != nullptr ? first : lines.Triangle(), last, from, to);
    comparison.Walk(lines.Triangle(), i % 2 == 0 ? lines.Triangle() : nullptr, from, to);
  }
}

// Asks for points far from each other until an index pays, which it does not on a small surface.
void MakeLocationIndex(TIN const& tin, Dice& dice) {
  for (int i = 0; i < 2000 && !TINPeer::Location(tin).HasIndex(); ++i) {
    tin.GetTriangleWithPoint(*tin.GetPoint(dice.Below(tin.GetNumberOfPoints())));
  }
}

using SurveyAtPlace = std::tuple<Survey, Place>;

class ProfileReference : public ::testing::TestWithParam<SurveyAtPlace> {
 protected:
  static constexpr int POINTS = 1200;

  ProfileReference() {
    std::vector<TPoint> const points =
        MakeSurvey(std::get<0>(GetParam()), POINTS, m_Dice.Bits(), std::get<1>(GetParam()).frame);
    Extent const extent = ExtentOf(points);
    m_Tin.Init(POINTS, extent.min, extent.max);
    for (TPoint const& p : points) m_Tin.AddPoint(p);
  }

  void Compare() {
    Comparison comparison(m_Tin);
    LineMaker lines(m_Tin, m_Dice);
    CompareLines(comparison, lines, 400);
    CompareFarLines(comparison, lines, 40);
    CompareWalks(comparison, lines, m_Tin, 60);
    EXPECT_EQ(comparison.Fault(), "");
  }

  Dice m_Dice{TestSeed()};
  TIN m_Tin;
};

TEST_P(ProfileReference, LinesOverASurfaceAreEqual) { Compare(); }

TEST_P(ProfileReference, WalksThatKnowTheirWayAheadAreEqual) {
  LineMaker lines(m_Tin, m_Dice);
  MakeLocationIndex(m_Tin, m_Dice);
  Comparison comparison(m_Tin);
  CompareWalks(comparison, lines, m_Tin, 400);
  EXPECT_EQ(comparison.Fault(), "");
}

TEST_P(ProfileReference, LinesOverAFilteredSurfaceAreEqual) {
  for (int i = 0; i < m_Tin.GetNumberOfTriangles(); ++i) {
    if (m_Dice.OneIn(4)) m_Tin.GetTriangle(i, true)->m_Flags |= TRI_FILTERED;
  }
  Compare();
}

TEST_P(ProfileReference, LinesOverALoadedSurfaceAreEqual) {
  TemporaryFolder folder;
  ASSERT_TRUE(m_Tin.Save(folder.Wide("a.tin").c_str()));
  ASSERT_TRUE(m_Tin.Load(folder.Wide("a.tin").c_str()));
  Compare();
}

TEST_P(ProfileReference, LinesOverASurfaceWithABorderListAreEqual) {
  TINPeer::Border(m_Tin) = new TArray<int>(10);
  TINPeer::Border(m_Tin)->Add(0);
  Compare();
}

INSTANTIATE_TEST_SUITE_P(All, ProfileReference,
                         ::testing::Combine(::testing::ValuesIn(ALL_SURVEYS),
                                            ::testing::ValuesIn(PLACES)),
                         [](auto const& survey) {
                           return std::string(NameOf(std::get<0>(survey.param))) +
                                  std::get<1>(survey.param).name;
                         });

// --- Surfaces with gaps
// ---------------------------------------------------------------------------

// What is wrong with a patchwork beside its gaps, each as one in so many, 0 for never.
struct Damage {
  char const* name;
  int missing;   // triangles left out
  int turned;    // triangles laid counter-clockwise
  int oneSided;  // neighbours known from one side only
  int wrong;     // neighbours that are just any triangle
};

void PrintTo(Damage const& damage, std::ostream* out) { *out << damage.name; }

constexpr Damage DAMAGES[] = {
    {"Whole", 0, 0, 0, 0},      {"Gaps", 6, 0, 0, 0},      {"ManyGaps", 2, 0, 0, 0},
    {"Turned", 8, 3, 0, 0},     {"OneSided", 8, 0, 12, 0}, {"WrongNeighbours", 8, 0, 0, 20},
    {"Everything", 6, 6, 9, 9},
};

class Patchwork : public ::testing::TestWithParam<Damage> {
 protected:
  // A lattice of squares of two triangles each; the nodes stand at whole numbers, or near them.
  void Lay() {
    m_Mesh = std::make_unique<HandMadeMesh>();
    m_Laid.clear();
    int const columns = 1 + m_Dice.Below(8);
    int const rows = 1 + m_Dice.Below(8);
    double const jitter = m_Dice.OneIn(2) ? 0.0 : 0.3;
    std::vector<TPoint*> nodes;
    for (int i = 0; i < (columns + 1) * (rows + 1); ++i) {
      double const x = i % (columns + 1) + jitter * m_Dice.Unit();
      double const y = i / (columns + 1) + jitter * m_Dice.Unit();
      nodes.push_back(m_Mesh->Point(x, y, m_Dice.Between(-5, 5)));
    }
    for (int row = 0; row < rows; ++row) {
      for (int column = 0; column < columns; ++column) {
        std::size_t const at = static_cast<std::size_t>(row * (columns + 1) + column);
        std::size_t const above = at + static_cast<std::size_t>(columns) + 1;
        LayOne(nodes[at], nodes[above], nodes[at + 1]);
        LayOne(nodes[above], nodes[above + 1], nodes[at + 1]);
      }
    }
    while (m_Laid.empty()) LayOne(nodes[0], nodes[1], nodes.back());
    LinkAll();
    SetBounds(columns, rows);
    ListBorder();
  }

  void TearDown() override { EXPECT_EQ(m_Fault, ""); }

  TIN& Tin() { return m_Mesh->tin; }

  Dice m_Dice{TestSeed()};
  std::unique_ptr<HandMadeMesh> m_Mesh;
  std::vector<TTriangle*> m_Laid;
  std::string m_Fault;

 private:
  bool Strikes(int one_in) { return one_in > 0 && m_Dice.OneIn(one_in); }

  void LayOne(TPoint* a, TPoint* b, TPoint* c) {
    if (Strikes(GetParam().missing)) return;
    TTriangle* const t = m_Mesh->LayClockwise(a, b, c);
    if (Strikes(GetParam().turned)) {
      std::swap(t->m_pVertex[0], t->m_pVertex[1]);
      t->CalcTri();
    }
    m_Laid.push_back(t);
  }

  void LinkAll() {
    for (TTriangle* const t : m_Laid) {
      for (TTriangle* const other : m_Laid) {
        if (t != other && !Strikes(GetParam().oneSided)) t->SetAdjacentPointer(other);
      }
      if (Strikes(GetParam().wrong)) t->m_pAdjacent[m_Dice.Below(3)] = Any();
      if (m_Dice.OneIn(6)) t->m_Flags |= m_Dice.OneIn(2) ? TRI_OUTSIDE : TRI_FILTERED;
    }
  }

  TTriangle* Any() {
    return m_Laid[static_cast<std::size_t>(m_Dice.Below(static_cast<int>(m_Laid.size())))];
  }

  void ListBorder() {
    if (m_Dice.OneIn(8)) return;
    auto*& border = TINPeer::Border(Tin());
    border = new TArray<int>(100);
    for (int entries = m_Dice.OneIn(6) ? 0 : 1 + m_Dice.Below(20); entries > 0; --entries) {
      border->Add(m_Dice.Below(static_cast<int>(m_Laid.size())));
    }
  }

  void SetBounds(int columns, int rows) {
    TINPeer::Min(Tin()) = TPoint(-1, -1);
    TINPeer::Max(Tin()) = TPoint(columns + 1.0, rows + 1.0);
    TINPeer::WorldMin(Tin()) = TPoint(-1, -1);
    TINPeer::WorldMax(Tin()) = TPoint(columns + 1.0, rows + 1.0);
  }
};

TEST_P(Patchwork, LinesAreEqual) {
  StatedProfile::Ways ways;
  for (int i = 0; i < 150 && m_Fault.empty(); ++i) {
    Lay();
    Comparison comparison(Tin());
    LineMaker lines(Tin(), m_Dice);
    CompareLines(comparison, lines, 30);
    CompareFarLines(comparison, lines, 4);
    CompareWalks(comparison, lines, Tin(), 10);
    m_Fault = comparison.Fault();
    ways += comparison.Taken();
  }
  EXPECT_GT(ways.scans, 0);
  EXPECT_GT(ways.gaps, 0);
  EXPECT_GT(ways.vertexStarts, 0);
  EXPECT_GT(ways.alongSides, 0);
  EXPECT_GT(ways.endVertices, 0);
  EXPECT_GT(ways.lostWays, 0);
  EXPECT_GT(ways.hiddenCrossings, 0);
  EXPECT_GT(ways.endsNotHeld, 0);
  EXPECT_GT(ways.oneTriangle, 0);
  EXPECT_GT(ways.givenUp, 0);
}

INSTANTIATE_TEST_SUITE_P(All, Patchwork, ::testing::ValuesIn(DAMAGES),
                         [](auto const& damage) { return std::string(damage.param.name); });

// --- Real surveys
// ----------------------------------------------------------------------------------

TEST(ProfileReferenceInTwoHeaps, LongWalksThatKnowTheirWayAheadAreEqual) {
  constexpr double APART = 1e6;
  Dice dice(TestSeed());
  TIN tin;
  tin.Init(20000, TPoint(0, 0), TPoint(APART + 1, 1));
  for (int i = 0; i < 20000; ++i) {
    double const x = (i % 2 == 0 ? 0.0 : APART) + dice.Unit();
    tin.LoadPoint(x, dice.Unit(), dice.Unit());
  }
  tin.Triangulate();
  MakeLocationIndex(tin, dice);
  ASSERT_TRUE(TINPeer::Location(tin).HasIndex());
  Comparison comparison(tin);
  for (int i = 0; i < 40; ++i) {
    TPoint const from(dice.Unit() * 0.2, dice.Unit());
    TPoint const to((i % 2 == 0 ? 0.8 : APART) + 0.2 * dice.Unit(), dice.Unit());
    comparison.Walk(tin.GetTriangleWithPoint(from), tin.GetTriangleWithPoint(to), from, to);
    comparison.Walk(tin.GetTriangleWithPoint(to), tin.GetTriangleWithPoint(from), to, from);
  }
  EXPECT_EQ(comparison.Fault(), "");
}

TEST(ProfileReferenceOnSurveys, LinesAreEqual) {
  char const* const folder = std::getenv("QELTIN_SURVEYS");
  if (folder == nullptr) GTEST_SKIP() << "QELTIN_SURVEYS names no folder of surveys";
  Dice dice(TestSeed());
  int surfaces = 0;
  for (auto const& entry : std::filesystem::directory_iterator(folder)) {
    std::string const extension = entry.path().extension();
    if (extension != ".xyz" && extension != ".ttm") continue;
    SCOPED_TRACE(entry.path().filename());
    TIN tin;
    if (!tin.Load(qeltin::FromUtf8(entry.path().native()).c_str())) continue;
    ++surfaces;
    Comparison comparison(tin);
    LineMaker lines(tin, dice);
    CompareLines(comparison, lines, 300);
    CompareFarLines(comparison, lines, 20);
    EXPECT_EQ(comparison.Fault(), "");
  }
  EXPECT_GT(surfaces, 0);
}

}  // namespace
