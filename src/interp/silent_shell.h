#pragma once

// A shell without a window and without a person: questions take their default, dialogs are
// cancelled, output goes into memory or nowhere. Fuzzing and timing use it as it is, with programs
// that are MemoryDocuments; fronts without a window derive from it and add what they have.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "interp/memory_document.h"
#include "interp/shell.h"

namespace vexa {

class SilentShell : public Shell {
 public:
  SilentShell();
  ~SilentShell() override;
  // Makes a document the one that a person works in; null for none.
  void activate(TextDocument* document) { m_active = document; }
  // The drawings of the programs so far, in the order in which they were made.
  std::span<const std::unique_ptr<CMiniDrawDoc>> drawings() const { return m_drawings; }
  // What was printed, unless it was to be dropped.
  std::string output() const;
  void dropOutput() { m_dropOutput = true; }
  // After this many interrupt tests every further one answers `stop`.
  void stopAfterPolls(std::uint64_t polls) { m_pollsLeft = polls; }

  int messageBox(const MessageRequest& request) override;
  std::optional<std::string> fileDialog(const FileRequest&) override { return std::nullopt; }
  std::optional<std::string> textEntry(const TextRequest&) override { return std::string(); }
  std::optional<double> calculator(const CalcRequest&) override { return 0.0; }
  FormReply form(const FormRequest& request) override;
  ElementPick viewData(const DataRequest&) override { return {}; }

  TextDocument* activeTextDocument() override { return m_active; }
  TextDocument& newOutputDocument() override;
  void bringToFront(TextDocument&) override {}
  CMiniDrawDoc* activeDrawing() override { return m_activeDrawing; }
  CMiniDrawDoc& newDrawing() override;
  DrawingWindow& windowOf(CMiniDrawDoc& drawing) override;
  void bringToFront(CMiniDrawDoc& drawing) override { m_activeDrawing = &drawing; }

  void statusText(std::string_view) override {}
  void postMessage(std::string_view) override {}
  void hideMessage() override {}
  void progress(double, std::string_view) override {}
  void refresh(unsigned) override {}
  bool barShown(Bar) const override { return true; }
  void showBar(Bar) override {}
  bool openUrl(std::string_view) override { return false; }

  void runBegins() override {}
  void runEnds(bool) override {}
  void pump() override {}
  Interrupt interruptRequested() override;
  void wait(double) override {}
  double clock() override;

 private:
  TextDocument* m_active = nullptr;
  std::vector<std::unique_ptr<MemoryDocument>> m_outputs;
  bool m_dropOutput = false;
  std::vector<std::unique_ptr<CMiniDrawDoc>> m_drawings;
  CMiniDrawDoc* m_activeDrawing = nullptr;
  std::uint64_t m_pollsLeft = UINT64_MAX;
};

}  // namespace vexa
