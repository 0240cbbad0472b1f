// Plans survey lines, one of them with rounded corners, and draws them as text.

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "qeltin/models/CLine.h"
#include "qeltin/models/CModelManager.h"
#include "qeltin/models/ILineList.h"

namespace {

constexpr int COLUMNS = 64;
constexpr int ROWS = 20;
constexpr double COLUMN = 5.0;  // metres
constexpr double ROW = 10.0;

// Puts `letter` wherever the line passes.
void Draw(Line const& line, char letter, std::vector<std::string>& picture) {
  double const dx = line.end.x - line.start.x;
  double const dy = line.end.y - line.start.y;
  int const steps = 1 + static_cast<int>(std::hypot(dx, dy));
  for (int i = 0; i <= steps; ++i) {
    double const x = line.start.x + dx * i / steps;
    double const y = line.start.y + dy * i / steps;
    int const column = static_cast<int>(std::floor(x / COLUMN));
    int const row = ROWS - 1 - static_cast<int>(std::floor(y / ROW));
    if (row >= 0 && row < ROWS && column >= 0 && column < COLUMNS) picture[row][column] = letter;
  }
}

// The way in: two corners, rounded by arcs of 60 and 40, and between them a place of its own, which
// every corner but the first needs before it.
CLine Approach() {
  CLine line;
  line.SetName(L"Approach");
  line.SetDataFileName(L"Approach.MDB");
  CurvedCenterLine& way = *line.GetCenterLine();
  way.AddCurvedPoint(15.0, 15.0, 0.0, 1);
  way.AddCurvedPoint(15.0, 165.0, 60.0, 1);
  way.AddCurvedPoint(110.0, 165.0, 0.0, 1);
  way.AddCurvedPoint(155.0, 165.0, 0.0, 1);
  way.AddCurvedPoint(245.0, 165.0, 40.0, 1);
  way.AddCurvedPoint(285.0, 35.0, 0.0, 1);
  way.SetHaveCenterLine(true);
  way.Init(0.0, false);
  return line;
}

}  // namespace

int main() {
  CModelManager& manager = CModelManager::GetTinModelManager();
  ILineList* const list = manager.CreateLineList();
  list->AddLine(Approach());
  list->AddLine(L"Basin", 75.0, 25.0, 225.0, 105.0);

  Page page;
  page.SetBottomLeft(Point(0.0, 0.0, 0.0));
  page.SetTopRight(Point(COLUMNS * COLUMN, ROWS * ROW, 0.0));
  std::vector<std::string> picture(ROWS, std::string(COLUMNS, ' '));
  for (int i = 0; i < list->GetNumLines(); ++i) {
    CLine& line = *list->GetLine(i);
    std::vector<Line> pieces;
    line.GetCenterLine()->BuildPageLines(page, pieces);
    for (Line const& piece : pieces) Draw(piece, i == 0 ? '#' : '+', picture);
    std::printf("%ls, in %ls, as %zu pieces\n", line.GetName(), line.GetDataFileName(),
                pieces.size());
  }
  for (std::string const& row : picture) {
    std::printf("%s\n", row.substr(0, row.find_last_not_of(' ') + 1).c_str());
  }

  manager.DestroyLineList(list);
  return 0;
}
