// The module that `vexa` opens for pictures that need fonts and pixels: PNG and PDF. It needs no
// display.

#include <QBuffer>
#include <QGuiApplication>
#include <QImage>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <cmath>
#include <memory>
#include <new>
#include <optional>

#include "graphics/surfaces/drawn_text.h"
#include "graphics/surfaces/render_module.h"
#include "render/painter_surface.h"

namespace vexa {

namespace {

// Fonts need an application object, which a program without a window does not have. The library's
// own remarks about the surroundings are nothing for the user of a picture.
class Application {
 public:
  Application() {
    if (QCoreApplication::instance()) return;
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    m_application.emplace(m_wordCount, m_words);
  }

 private:
  char m_name[5] = "vexa";
  char m_option[10] = "-platform";
  char m_platform[10] = "offscreen";
  char* m_words[4] = {m_name, m_option, m_platform, nullptr};
  int m_wordCount = 3;
  std::optional<QGuiApplication> m_application;
};

QString titleOf(const PicturePage& page) {
  const std::u32string title = decodeDrawnText(page.title);
  return QString::fromUcs4(title.data(), static_cast<qsizetype>(title.size()));
}

// A painter at work on some device, with a surface in logical units.
class PagePainter {
 public:
  PagePainter(QPaintDevice& device, const PicturePage& page) : m_painter(&device) {
    const double across = static_cast<double>(device.width()) / page.width;
    const double down = static_cast<double>(device.height()) / page.height;
    m_painter.scale(across, down);
    m_surface.emplace(m_painter, PainterSurface::Target{page.area(), false, 96});
  }
  PainterSurface& surface() { return *m_surface; }
  bool end() {
    const bool failed = m_surface->failed();
    m_surface.reset();
    return m_painter.end() && !failed;
  }

 private:
  QPainter m_painter;
  std::optional<PainterSurface> m_surface;
};

class PngPicture : public RenderedPicture {
 public:
  explicit PngPicture(const RenderRequest& request)
      : m_image(request.pixelWidth, request.pixelHeight, QImage::Format_RGB32),
        m_density(request.density) {
    if (m_image.isNull()) throw std::bad_alloc();
    m_image.fill(Qt::white);
    if (!request.page.title.empty()) m_image.setText("Title", titleOf(request.page));
    m_page.emplace(m_image, request.page);
  }
  DrawingSurface& surface() override { return m_page->surface(); }
  bool finish(std::string& bytes) override {
    if (!m_page->end()) return false;
    // Only now, since fonts would be sized by it.
    const int dotsPerMetre = static_cast<int>(std::lround(m_density * 1000 / millimetresPerInch));
    m_image.setDotsPerMeterX(dotsPerMetre);
    m_image.setDotsPerMeterY(dotsPerMetre);
    QBuffer buffer;
    if (!buffer.open(QIODevice::WriteOnly) || !m_image.save(&buffer, "PNG")) return false;
    bytes.assign(buffer.data().constData(), static_cast<std::size_t>(buffer.data().size()));
    return true;
  }

 private:
  Application m_application;
  QImage m_image;
  double m_density;
  std::optional<PagePainter> m_page;
};

class PdfPicture : public RenderedPicture {
 public:
  explicit PdfPicture(const RenderRequest& request)
      : m_opened(m_buffer.open(QIODevice::WriteOnly)) {
    m_writer.emplace(&m_buffer);
    m_writer->setCreator("Vexa");
    m_writer->setTitle(titleOf(request.page));
    constexpr int dotsPerInch = 1200;
    m_writer->setResolution(dotsPerInch);
    const double unit = request.page.millimetresPerUnit();
    const QSizeF size(request.page.width * unit, request.page.height * unit);
    m_writer->setPageLayout(
        QPageLayout(QPageSize(size, QPageSize::Millimeter, {}, QPageSize::ExactMatch),
                    QPageLayout::Portrait, QMarginsF()));
    m_page.emplace(*m_writer, request.page);
  }
  DrawingSurface& surface() override { return m_page->surface(); }
  bool finish(std::string& bytes) override {
    if (!m_opened || !m_page->end()) return false;
    m_page.reset();
    m_writer.reset();
    bytes.assign(m_buffer.data().constData(), static_cast<std::size_t>(m_buffer.data().size()));
    return true;
  }

 private:
  Application m_application;
  QBuffer m_buffer;
  bool m_opened;
  std::optional<QPdfWriter> m_writer;
  std::optional<PagePainter> m_page;
};

// Faults stay on this side: the program has a C++ library of its own.
class GuardedPicture : public RenderedPicture {
 public:
  explicit GuardedPicture(std::unique_ptr<RenderedPicture> picture)
      : m_picture(std::move(picture)) {}
  DrawingSurface& surface() override { return m_picture->surface(); }
  bool finish(std::string& bytes) override {
    try {
      return m_picture->finish(bytes);
    } catch (const std::bad_alloc&) {
      return false;
    }
  }

 private:
  std::unique_ptr<RenderedPicture> m_picture;
};

std::unique_ptr<RenderedPicture> openPicture(const RenderRequest& request) {
  std::unique_ptr<RenderedPicture> picture;
  if (request.format == RenderFormat::png)
    picture = std::make_unique<PngPicture>(request);
  else
    picture = std::make_unique<PdfPicture>(request);
  return std::make_unique<GuardedPicture>(std::move(picture));
}

}  // namespace

}  // namespace vexa

extern "C" __attribute__((visibility("default"))) void vexaOpenPicture1(
    const vexa::RenderRequest& request, std::unique_ptr<vexa::RenderedPicture>& picture) noexcept {
  try {
    picture = vexa::openPicture(request);
  } catch (const std::bad_alloc&) {
    picture.reset();
  }
}
