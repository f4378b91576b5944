#include "interp/message_box.h"

#include <algorithm>

#include "interp/interpreter_state.h"
#include "values/character_class.h"

namespace vexa {

namespace {

constexpr unsigned buttonBits = 15;
constexpr unsigned kindBits = 240;
constexpr std::string_view errorCaption = "     Error message:";
constexpr std::string_view questionCaption = "     Question:";

// Adds a button, or finds it when an earlier rule has added it already.
BoxButton& addButton(BoxLayout& layout, std::string_view label, int answer) {
  for (BoxButton& button : layout.buttons)
    if (button.label == label) return button;
  return layout.buttons.emplace_back(BoxButton{label, answer});
}

// The later of two rules that name a default decides.
void addDefault(BoxLayout& layout, std::string_view label, int answer) {
  for (BoxButton& button : layout.buttons) button.isDefault = false;
  addButton(layout, label, answer).isDefault = true;
}

void addCancel(BoxLayout& layout) { addButton(layout, "&Cancel", 2).isCancel = true; }

void addRetryCancel(BoxLayout& layout) {
  addDefault(layout, "&Retry", 4);
  addCancel(layout);
}

// Lower case, without "&" and without blanks at the ends.
std::string plain(std::string_view text) {
  std::string result;
  for (char c : text)
    if (c != '&') result += lowerCase(c);
  const std::size_t begin = result.find_first_not_of(" \t");
  if (begin == std::string::npos) return {};
  return result.substr(begin, result.find_last_not_of(" \t") - begin + 1);
}

}  // namespace

int BoxLayout::defaultAnswer() const {
  for (const BoxButton& button : buttons)
    if (button.isDefault) return button.answer;
  for (const BoxButton& button : buttons)
    if (button.answer != 0) return button.answer;
  return 0;
}

int BoxLayout::answerNamed(std::string_view text) const {
  const std::string wanted = plain(text);
  for (const BoxButton& button : buttons) {
    if (button.answer == 0) continue;  // "&View Data" leaves the box open
    const std::string label = plain(button.label);
    if (wanted == label || wanted == label.substr(0, 1)) return button.answer;
  }
  return defaultAnswer();
}

BoxLayout layoutMessageBox(unsigned flags, std::string_view context) {
  BoxLayout layout;
  layout.caption = " Vexa ";
  if (!context.empty()) layout.caption.append("     Context: ").append(context);

  const unsigned kind = flags & kindBits;
  if (kind == boxError || kind == boxWarning) {
    layout.caption += errorCaption;
    layout.icon = BoxIcon::error;
    addRetryCancel(layout);
  } else if (kind == boxQuestion) {
    layout.caption += questionCaption;
    layout.icon = BoxIcon::question;
  }

  addButton(layout, "&View Data", 0);

  if (flags == boxContinueTerminate) {
    addDefault(layout, "C&ontinue", 2);
    addButton(layout, "&Terminate", 7);
    return layout;
  }
  switch (flags & buttonBits) {
    case boxOk:
      addDefault(layout, "O&K", 1);
      break;
    case boxOkCancel:
      addButton(layout, "O&K", 1);
      addCancel(layout);
      break;
    case boxYesNoCancel:
    case boxYesNo:
      layout.caption += questionCaption;
      layout.icon = BoxIcon::question;
      addDefault(layout, "&Yes", 6);
      addButton(layout, "&No", 7);
      if ((flags & buttonBits) == boxYesNoCancel) addCancel(layout);
      break;
    case boxRetryCancel:
      addRetryCancel(layout);
      break;
    default:
      break;
  }
  return layout;
}

int messageBox(std::string_view text, unsigned flags) {
  MessageRequest request;
  request.text = text;
  request.flags = flags;
  request.context = interpreter().contextText;
  return shell().messageBox(request);
}

}  // namespace vexa
