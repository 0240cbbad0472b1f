#include "apps/qeltin/Picture.h"

#include <chrono>
#include <memory>

#include "apps/qeltin/DraftFile.h"
#include "apps/qeltin/Progress.h"
#include "apps/qeltin/Report.h"
#include "apps/qeltin/picture/Drawing.h"

namespace qeltin::cli {

namespace {

using Json = nlohmann::ordered_json;

Json ViewOf(PictureOptions const& options) {
  if (!options.view) return "top";
  return {options.view->azimuth, options.view->elevation};
}

Json LegendOf(Drawing const& drawing) {
  Json legend = {{"heights", drawing.LegendHeights()}, {"scale_bar", nullptr}};
  if (drawing.Scale()) {
    legend["scale_bar"] = {{"length", drawing.Scale()->length},
                           {"pixels", drawing.Scale()->pixels}};
  }
  return legend;
}

void TellJson(PictureOptions const& options, Scene const& scene, Drawing const& drawing) {
  Json json = {{"file", options.output},
               {"size", {options.width, options.height}},
               {"view", ViewOf(options)},
               {"pixels_per_unit", nullptr},
               {"exaggeration", options.exaggeration},
               {"colours", scene.ColoursName()},
               {"heights", {scene.Bounds().min.z, scene.Bounds().max.z}},
               {"contours", nullptr},
               {"legend", nullptr}};
  if (drawing.PixelsPerUnit()) json["pixels_per_unit"] = *drawing.PixelsPerUnit();
  if (options.contours > 0.0) {
    json["contours"] = {{"interval", options.contours}, {"levels", scene.ContourLevels()}};
  }
  if (options.legend) json["legend"] = LegendOf(drawing);
  PrintResult(Dump(json));
}

void TellPeople(PictureOptions const& options, Scene const& scene, Drawing const& drawing) {
  NumberStyle const style;
  Report report(style);
  report.Add("picture",
             std::to_string(options.width) + " by " + std::to_string(options.height) + " pixels");
  if (drawing.PixelsPerUnit())
    report.Add("a pixel is", ShortNumber(1.0 / *drawing.PixelsPerUnit()));
  report.Add("heights",
             style.Text(scene.Bounds().min.z) + " to " + style.Text(scene.Bounds().max.z));
  report.Add("colours", scene.ColoursName());
  if (options.contours > 0.0) {
    report.Add("contour levels", static_cast<long long>(scene.ContourLevels()));
  }
  PrintResult(report.Text());
}

// What drawing in software takes.
std::chrono::duration<double> Guess(TIN const& tin, PictureOptions const& options) {
  constexpr double TRIANGLES_A_SECOND = 1e6;
  constexpr double PIXELS_A_SECOND = 1e7;
  return std::chrono::duration<double>(tin.GetNumberOfTriangles() / TRIANGLES_A_SECOND +
                                       static_cast<double>(options.width) * options.height /
                                           PIXELS_A_SECOND);
}

}  // namespace

void RenderPicture(PictureOptions const& options) {
  DraftFile draft(options.output, options.overwrite);
  HeldSurface const tin = OpenSurface(options.surface, options);
  Scene scene(*tin, options);
  Drawing drawing(scene, options);
  {
    Progress const progress("picture", Guess(*tin, options), options.quiet);
    drawing.Draw();
    drawing.Write(draft.WorkingName());
  }
  draft.Sync();
  draft.Commit();
  if (options.json) {
    TellJson(options, scene, drawing);
  } else if (!options.quiet) {
    TellPeople(options, scene, drawing);
  }
}

}  // namespace qeltin::cli
