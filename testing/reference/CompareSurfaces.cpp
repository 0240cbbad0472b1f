#include "testing/reference/CompareSurfaces.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <sstream>

#include "testing/TINPeer.h"

namespace qeltin::testing {

namespace {

bool Same(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
         (std::isnan(a) && std::isnan(b));
}

bool Same(TPoint const& a, TPoint const& b) {
  return Same(a.x, b.x) && Same(a.y, b.y) && Same(a.z, b.z);
}

class Comparison {
 public:
  Comparison(TIN const& tin, ReferenceTin const& reference)
      : m_Points(TINPeer::Points(tin)),
        m_Triangles(TINPeer::Triangles(tin)),
        m_Tin(tin),
        m_Reference(reference) {}

  std::string FirstDifference(bool allSlots) {
    CompareBoxes();
    ComparePool("point", *m_Points, *m_Reference.m_pPoints);
    ComparePool("triangle", *m_Triangles, *m_Reference.m_pTriangles);
    Expect("current triangle", Slot(TINPeer::Location(m_Tin).m_pCurrent),
           m_Reference.Slot(m_Reference.m_pCurrent));
    if (m_bEqual && allSlots) {
      CompareElements(m_Points->m_iCapacity, m_Triangles->m_iCapacity);
    } else if (m_bEqual) {
      CompareElements(m_Points->m_iCount, m_Triangles->m_iCount);
    }
    if (m_bEqual) CompareMap();
    return m_Text.str();
  }

 private:
  int Slot(TPoint const* p) const {
    return p == nullptr ? -1 : static_cast<int>(p - m_Points->m_pData);
  }
  int Slot(TTriangle const* t) const {
    return t == nullptr ? -1 : static_cast<int>(t - m_Triangles->m_pData);
  }

  template <typename Here, typename There>
  void Differ(std::string const& what, Here const& here, There const& there) {
    if (m_bEqual) m_Text << what << ": " << here << ", reference " << there;
    m_bEqual = false;
  }
  template <typename T>
  void Expect(char const* what, T here, T there) {
    if (here != there) Differ(what, here, there);
  }
  void Expect(char const* what, int number, char const* part, int here, int there) {
    if (here != there) {
      Differ(std::string(what) + " " + std::to_string(number) + " " + part, here, there);
    }
  }
  void Expect(char const* what, int number, char const* part, double here, double there) {
    if (Same(here, there)) return;
    m_Text.precision(17);
    Differ(std::string(what) + " " + std::to_string(number) + " " + part, here, there);
  }

  void CompareBoxes() {
    TPoint min, max, worldMin, worldMax;
    m_Tin.GetBounds(min, max);
    m_Tin.GetWorldBounds(worldMin, worldMax);
    if (!Same(min, m_Reference.m_Min) || !Same(max, m_Reference.m_Max)) {
      Differ("data bounds", "differ", "");
    }
    if (!Same(worldMin, m_Reference.m_WorldMin) || !Same(worldMax, m_Reference.m_WorldMax)) {
      Differ("world box", "differs", "");
    }
  }

  template <typename T>
  void ComparePool(char const* what, TArray<T> const& here, TArray<T> const& there) {
    Expect(what, here.m_iCount, "count", here.m_iCount, there.m_iCount);
    Expect(what, here.m_iCapacity, "capacity", here.m_iCapacity, there.m_iCapacity);
    for (int i = 0; m_bEqual && i < here.m_iCapacity; ++i) {
      Expect(what, i, "of the index", here.m_pIndex[i], there.m_pIndex[i]);
    }
  }

  void CompareElements(int points, int triangles) {
    for (int i = 0; i < points; ++i) {
      TPoint const& p = *m_Points->At(i);
      TPoint const& r = *m_Reference.m_pPoints->At(i);
      Expect("point", i, "x", p.x, r.x);
      Expect("point", i, "y", p.y, r.y);
      Expect("point", i, "z", p.z, r.z);
    }
    for (int i = 0; m_bEqual && i < triangles; ++i) {
      CompareTriangle(i, *m_Triangles->At(i), *m_Reference.m_pTriangles->At(i));
    }
    Expect("last triangle", Slot(TINPeer::LastTriangle(m_Tin)),
           m_Reference.Slot(m_Reference.m_pLastTriangle));
  }

  void CompareTriangle(int i, TTriangle const& t, TTriangle const& r) {
    for (int k = 0; k < 3; ++k) {
      Expect("triangle", i, "corner", Slot(t.m_pVertex[k]), m_Reference.Slot(r.m_pVertex[k]));
      Expect("triangle", i, "neighbour", Slot(t.m_pAdjacent[k]),
             m_Reference.Slot(r.m_pAdjacent[k]));
    }
    Expect("triangle", i, "flags", int{t.m_Flags}, int{r.m_Flags});
    Expect("triangle", i, "centre x", t.m_CentreX, r.m_CentreX);
    Expect("triangle", i, "centre y", t.m_CentreY, r.m_CentreY);
    Expect("triangle", i, "squared radius", t.m_RadiusSq, r.m_RadiusSq);
  }

  void CompareMap() {
    PointMap* const here = TINPeer::Map(m_Tin);
    PointMap* const there = m_Reference.m_pPointMap.get();
    Expect("map is there", here != nullptr, there != nullptr);
    if (here == nullptr || there == nullptr) return;
    Expect("map entries", here->GetNumberOfPoints(), there->GetNumberOfPoints());
    for (int i = 0; m_bEqual && i < m_Points->m_iCount; ++i) {
      CompareNode(i, here->FindPoint(m_Points->At(i)),
                  there->FindPoint(m_Reference.m_pPoints->At(i)));
    }
  }

  void CompareNode(int i, PointMapNode const& node, PointMapNode const& reference) {
    Expect("map entry", i, "point", Slot(node.GetPoint()), m_Reference.Slot(reference.GetPoint()));
    Expect("map entry", i, "triangles", node.NumberOfTriangles(), reference.NumberOfTriangles());
    for (int k = 0; m_bEqual && k < node.NumberOfTriangles(); ++k) {
      Expect("map entry", i, "triangle", Slot(node[k]), m_Reference.Slot(reference[k]));
    }
  }

  TArray<TPoint> const* m_Points;
  TArray<TTriangle> const* m_Triangles;
  TIN const& m_Tin;
  ReferenceTin const& m_Reference;
  std::ostringstream m_Text;
  bool m_bEqual = true;
};

}  // namespace

std::string Difference(TIN const& tin, ReferenceTin const& reference) {
  return Comparison(tin, reference).FirstDifference(false);
}

std::string DifferenceOfAllSlots(TIN const& tin, ReferenceTin const& reference) {
  return Comparison(tin, reference).FirstDifference(true);
}

}  // namespace qeltin::testing
