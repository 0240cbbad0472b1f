#include "apps/qeltin/picture/SurfaceWindow.h"

#include <cmath>
#include <filesystem>

#include "apps/qeltin/Failure.h"
#include "apps/qeltin/picture/RoundNumbers.h"
#include "qeltin/platform/Utf8.h"
#include "qeltin/render/GlViewer.h"

namespace qeltin::cli {

namespace {

using Clock = std::chrono::steady_clock;
using Kind = WindowEvent::Kind;

constexpr unsigned char COLOUR_BITS = 24;
constexpr unsigned char DEPTH_BITS = 24;

constexpr char32_t ESCAPE = 27;

constexpr Bearing ABOVE{180.0, 90.0};

std::string NameOf(ViewOptions const& options) {
  return std::filesystem::path(options.surface).filename().string();
}

double Length(TPoint const& p) { return std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z); }

}  // namespace

SurfaceWindow::SurfaceWindow(TIN const& tin, Scene& scene, ViewOptions const& options)
    : m_Tin(tin),
      m_Scene(scene),
      m_Options(options),
      m_Window(FromUtf8(NameOf(options)), options.width, options.height),
      m_Context(&m_Window, COLOUR_BITS, DEPTH_BITS),
      m_iLayers(scene.Layers()) {
  if (!m_Window.IsOk()) throw Failure(options.surface, "cannot be shown: " + m_Window.GetError());
  m_Context.OnSize(m_Window.GetWidth(), m_Window.GetHeight());
  m_Context.SetBackgroundColor(GlColor::GLC_WHITE);
  m_Context.CreateViewer();
  Fit(options.view);
}

void SurfaceWindow::Run() {
  constexpr std::chrono::milliseconds LONG{3'600'000};
  while (!m_bEnd) {
    WindowEvent event;
    if (m_Window.NextEvent(event, m_bToDraw ? std::chrono::milliseconds{0} : LONG)) {
      Take(event);
    } else if (m_bToDraw) {
      Draw();
    }
    if (!m_Window.IsOk()) {
      throw Failure(m_Options.surface, "is shown no longer: " + m_Window.GetError());
    }
  }
}

void SurfaceWindow::Take(WindowEvent const& event) {
  switch (event.kind) {
    case Kind::EXPOSE:
      m_bToDraw = true;
      break;
    case Kind::RESIZE:
      m_Context.OnSize(event.width, event.height);
      m_bToDraw = true;
      break;
    case Kind::KEY:
      TakeKey(event.key);
      break;
    case Kind::PRESS:
      PointTo(event);
      m_Held =
          event.button == WindowEvent::LEFT && event.shift ? WindowEvent::MIDDLE : event.button;
      break;
    case Kind::RELEASE:
      m_Held = WindowEvent::NONE;
      break;
    case Kind::MOTION:
      TakeMotion(event);
      break;
    case Kind::WHEEL:
      TakeWheel(event);
      break;
    case Kind::CLOSE:
      m_bEnd = true;
      break;
  }
}

void SurfaceWindow::TakeKey(char32_t key) {
  constexpr double STEP = 1.25;
  switch (key) {
    case U'c':
      return Toggle(Scene::CONTOURS);
    case U'm':
      return Toggle(Scene::MESH);
    case U'p':
      return Toggle(Scene::POINTS | Scene::SURFACE);
    case U'+':
    case U'=':  // the same key without shift
      return Stretch(STEP);
    case U'-':
      return Stretch(1.0 / STEP);
    case U'r':
      Stretch(m_Options.exaggeration / m_Scene.Exaggeration());
      return Fit(m_Options.view);
    case U't':
      return Fit(ABOVE);
    case U'q':
    case ESCAPE:
      m_bEnd = true;
      return;
    default:
      return;
  }
}

void SurfaceWindow::TakeMotion(WindowEvent const& event) {
  double const right = event.x - m_iPointerX;
  double const down = event.y - m_iPointerY;
  PointTo(event);
  if (m_Held == WindowEvent::NONE) return UpdateTitle();
  if (m_Held == WindowEvent::LEFT) {
    m_Orbit->Turn(right, down);
  } else {
    m_Orbit->Pan(right, down, m_Window.GetHeight());
  }
  m_bToDraw = true;
}

void SurfaceWindow::TakeWheel(WindowEvent const& event) {
  constexpr double STEP = 0.8;
  PointTo(event);
  std::optional<TPoint> const place = UnderPointer();
  TPoint const fixed =
      place ? m_Scene.ToScene(*place) : SightThroughPointer().At(m_Orbit->Distance());
  Box const box = m_Scene.SceneBounds();
  m_Orbit->Zoom(std::pow(STEP, event.steps), fixed, Length(box.max - box.min));
  m_bToDraw = true;
}

void SurfaceWindow::Fit(Bearing const& from) {
  constexpr double MARGIN = 24.0;  // pixels
  CameraFit fit(from, m_Window.GetWidth(), m_Window.GetHeight(), MARGIN);
  m_Scene.ForEachCorner([&fit](TPoint const& p) { fit.Add(p); });
  m_Orbit.emplace(fit.Result(), from);
  m_bToDraw = true;
}

void SurfaceWindow::Stretch(double factor) {
  constexpr double LEAST = 1e-3;
  constexpr double MOST = 1e3;
  double const exaggeration = m_Scene.Exaggeration() * factor;
  if (exaggeration < LEAST || exaggeration > MOST) return;
  m_Scene.SetExaggeration(exaggeration);
  m_Orbit->Stretch(factor);
  m_bToDraw = true;
}

void SurfaceWindow::Toggle(unsigned layers) {
  m_iLayers ^= layers;
  m_bToDraw = true;
}

void SurfaceWindow::Draw() {
  Clock::time_point const start = Clock::now();
  Camera const eye = Eye();
  GlViewer& viewer = *m_Context.GetViewer(0);
  eye.ApplyTo(viewer);
  m_Scene.SetLight(m_Context, eye.frame);
  m_Context.BeginDraw();
  m_Scene.Record(m_Context, m_iLayers & ~m_iRecorded);
  m_iRecorded |= m_iLayers;
  m_Context.BeginDrawViewer(&viewer);
  m_Scene.Draw(m_Context, m_iLayers);
  m_Context.EndDrawViewer(&viewer);
  m_Context.EndDraw();
  m_bToDraw = false;
  ++m_iFrames;
  m_Drawing += Clock::now() - start;
  UpdateTitle();
}

void SurfaceWindow::PointTo(WindowEvent const& event) {
  m_iPointerX = event.x;
  m_iPointerY = event.y;
}

Sight SurfaceWindow::SightThroughPointer() const {
  return SightThrough(Eye(), m_iPointerX, m_iPointerY, m_Window.GetWidth(), m_Window.GetHeight());
}

std::optional<TPoint> SurfaceWindow::UnderPointer() const {
  if (m_iPointerX < 0) return {};
  Sight const sight = SightThroughPointer();
  return FirstOnSurface(m_Tin, m_Scene.Bounds(),
                        {m_Scene.FromScene(sight.from), m_Scene.FromScene(sight.through)});
}

void SurfaceWindow::UpdateTitle() {
  std::string title = NameOf(m_Options);
  if (std::optional<TPoint> const place = UnderPointer()) {
    NumberStyle const style{3};
    title += ": " + style.Text(place->x) + ", " + style.Text(place->y) + "  height " +
             style.Text(place->z);
  }
  if (m_Scene.Exaggeration() != 1.0)
    title += "  (heights x " + ShortNumber(m_Scene.Exaggeration()) + ")";
  if (title == m_Title) return;
  m_Window.SetTitle(FromUtf8(title));
  m_Title = std::move(title);
}

}  // namespace qeltin::cli
