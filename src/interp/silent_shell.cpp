#include "interp/silent_shell.h"

#include <ctime>

#include "graphics/document/mini_draw_doc.h"
#include "interp/message_box.h"

namespace vexa {

namespace {

class DroppedOutput : public MemoryDocument {
 public:
  void write(std::string_view, char) override {}
};

// A view that nobody sees.
class NoWindow : public DrawingWindow {
 public:
  void changed(std::size_t) override {}
  void centreOn(int, int) override {}
  void zoomIn(int, int, float) override {}
  void zoomOut(int, int, float) override {}
  void zoomNormal() override {}
};

}  // namespace

SilentShell::SilentShell() = default;

SilentShell::~SilentShell() = default;

std::string SilentShell::output() const {
  std::string all;
  for (const auto& document : m_outputs) all += document->text();
  return all;
}

int SilentShell::messageBox(const MessageRequest& request) {
  return layoutMessageBox(request.flags, request.context).defaultAnswer();
}

FormReply SilentShell::form(const FormRequest& request) {
  // Empty entries leave the variables as they are.
  return {true, std::vector<std::string>(request.fields.size())};
}

TextDocument& SilentShell::newOutputDocument() {
  if (m_dropOutput)
    m_outputs.push_back(std::make_unique<DroppedOutput>());
  else
    m_outputs.push_back(std::make_unique<MemoryDocument>());
  return *m_outputs.back();
}

CMiniDrawDoc& SilentShell::newDrawing() {
  m_drawings.push_back(std::make_unique<CMiniDrawDoc>());
  m_activeDrawing = m_drawings.back().get();
  m_activeDrawing->emptyDrawing();
  return *m_activeDrawing;
}

DrawingWindow& SilentShell::windowOf(CMiniDrawDoc&) {
  static NoWindow window;
  return window;
}

Interrupt SilentShell::interruptRequested() {
  if (m_pollsLeft == 0) return Interrupt::stop;
  --m_pollsLeft;
  return Interrupt::none;
}

double SilentShell::clock() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

}  // namespace vexa
