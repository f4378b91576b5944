#include "interp/silent_shell.h"

#include <ctime>
#include <stdexcept>

#include "interp/message_box.h"

namespace vexa {

namespace {

class DroppedOutput : public MemoryDocument {
 public:
  void write(std::string_view, char) override {}
};

}  // namespace

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
  throw std::logic_error("a shell without drawings was asked for one");
}

DrawingWindow& SilentShell::windowOf(CMiniDrawDoc&) {
  throw std::logic_error("a shell without drawings was asked for a window");
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
