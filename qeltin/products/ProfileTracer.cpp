#include "qeltin/products/ProfileTracer.h"

#include <algorithm>

#include "qeltin/platform/Page.h"
#include "qeltin/products/ProfileWalk.h"

namespace qeltin::detail {

namespace {

constexpr double BEYOND_EDGE = 0.001;

// As std::clamp, but of any box: that of a file may have its corners exchanged.
double Clamped(double value, double min, double max) {
  return value < min ? min : value > max ? max : value;
}

TPoint Clamped(TPoint const& p, TPoint const& min, TPoint const& max) {
  return {Clamped(p.x, min.x, max.x), Clamped(p.y, min.y, max.y), p.z};
}

}  // namespace

ProfileTracer::ProfileTracer(TIN const& tin)
    : m_Tin(tin), m_bGaps(tin.m_pBorder != nullptr && tin.m_pBorder->m_iCount > 0) {}

int ProfileTracer::Trace(std::vector<TPolygon>& profiles, TPoint const& from, TPoint const& to) {
  if (from.XY_EqualsTo(to) || !Clip(from, to)) return 0;
  std::size_t const before = profiles.size();
  Locate();
  GiveSteps();
  m_Piece.clear();
  m_bGoOn = false;
  while (m_iSteps-- > 0 && TracePass(profiles)) {
  }
  return static_cast<int>(profiles.size() - before);
}

bool ProfileTracer::Walk(std::vector<TPoint>& points, TTriangle const* first, TTriangle const* last,
                         TPoint const& from, TPoint const& to) {
  GiveSteps();
  return ProfileWalk(points, from, to, m_bGaps, m_iSteps).Run(m_Tin, first, last);
}

bool ProfileTracer::Clip(TPoint const& from, TPoint const& to) {
  Page page;
  page.SetBottomLeft({m_Tin.m_WorldMin.x, m_Tin.m_WorldMin.y, 0.0});
  page.SetTopRight({m_Tin.m_WorldMax.x, m_Tin.m_WorldMax.y, 0.0});
  Line line({from.x, from.y, 0.0}, {to.x, to.y, 0.0});
  if (!page.ClipLine(line, &line)) return false;
  m_From = TPoint(line.start.x, line.start.y);
  m_To = TPoint(line.end.x, line.end.y);
  return true;
}

void ProfileTracer::Locate() {
  Triangulator& location = m_Tin.m_Triangulator;
  m_pFirst = location.Find(m_From);
  if (m_pFirst == nullptr && !m_bGaps && !m_Tin.InWorldBounds(m_From)) {
    m_From = Clamped(m_From, m_Tin.m_WorldMin, m_Tin.m_WorldMax);  // rounding of a cut end
    m_pFirst = location.Find(m_From);
  }
  m_pLast = location.Find(m_To);
}

void ProfileTracer::GiveSteps() {
  m_iSteps = 4LL * (m_Tin.GetNumberOfTriangles() + 1);
  m_iRestarts = m_bGaps ? m_Tin.m_pBorder->m_iCount + 3 : 1;
}

// Returns true iff there is to be another pass.
bool ProfileTracer::TracePass(std::vector<TPolygon>& profiles) {
  if (!Aim()) return false;
  if ((m_pFirst == nullptr || m_pLast == nullptr) && m_bGaps && !FindSurface()) return false;
  if (m_pFirst == nullptr) return false;
  bool const crossed_gap = !m_From.XY_EqualsTo(m_Origin);
  if (!crossed_gap && m_iRestarts-- <= 0) return false;

  // A piece that another pass follows is appended again.
  AppendPiece(profiles);
  m_Piece.clear();
  double z;
  bool const has_height = m_Tin.GetZ(m_From, z, m_pFirst);
  if (has_height) m_Piece.emplace_back(m_From.x, m_From.y, z);
  if (m_pFirst == m_pLast) {
    if (has_height) m_Piece.emplace_back(m_To.x, m_To.y, z);  // the height of the start
    m_bGoOn = false;
  } else if (SettleFirst()) {
    m_bGoOn = !ProfileWalk(m_Piece, m_From, m_To, m_bGaps, m_iSteps).Run(m_Tin, m_pFirst, m_pLast);
  }
  AppendPiece(profiles);

  if (!m_bGoOn || m_Piece.empty() || !m_bGaps) return false;
  StartBeyondLast();
  return true;
}

// Takes the direction of what is left. Returns false where nothing is.
bool ProfileTracer::Aim() {
  m_dLength = m_From.XY_Distance(m_To);
  if (m_dLength == 0.0) return false;
  m_dUx = (m_To.x - m_From.x) / m_dLength;
  m_dUy = (m_To.y - m_From.y) / m_dLength;
  m_Origin = m_From;
  return true;
}

void ProfileTracer::AppendPiece(std::vector<TPolygon>& profiles) const {
  if (!m_Piece.empty()) profiles.emplace_back(m_Piece);
}

TPoint ProfileTracer::PlaceAt(double along) const {
  return {m_Origin.x + along * m_dUx, m_Origin.y + along * m_dUy};
}

void ProfileTracer::StartBeyondLast() {
  TPoint const& last = m_Piece.back();
  double const along = (last.x - m_Origin.x) * m_dUx + (last.y - m_Origin.y) * m_dUy;
  m_From = PlaceAt(along + BEYOND_EDGE);
  m_pFirst = nullptr;
}

}  // namespace qeltin::detail
