#pragma once

// The interpreter's message box: caption, icon, buttons and answers from platform-style flags.

#include <string>
#include <string_view>
#include <vector>

namespace vexa {

inline constexpr unsigned boxOk = 0;
inline constexpr unsigned boxOkCancel = 1;
inline constexpr unsigned boxYesNoCancel = 3;
inline constexpr unsigned boxYesNo = 4;
inline constexpr unsigned boxRetryCancel = 5;
inline constexpr unsigned boxError = 16;
inline constexpr unsigned boxQuestion = 32;
inline constexpr unsigned boxWarning = 48;
inline constexpr unsigned boxInformation = 64;
inline constexpr unsigned boxContinueTerminate = 112;

enum class BoxIcon { information, question, error };

struct BoxButton {
  std::string_view label;
  int answer;  // 0 for "&View Data"
  bool isDefault = false;
  bool isCancel = false;
};

// What a front shows for given flags and context: the caption, the icon and the buttons in order.
struct BoxLayout {
  std::string caption;
  BoxIcon icon = BoxIcon::information;
  std::vector<BoxButton> buttons;
  // The default button's answer; the first button's where none is the default.
  int defaultAnswer() const;
  // The answer of the button named by its text or first letter, ignoring case and "&"; the default
  // button's for anything else.
  int answerNamed(std::string_view text) const;
};

BoxLayout layoutMessageBox(unsigned flags, std::string_view context);

// Shows `text` through the shell, with the executing function as context.
int messageBox(std::string_view text, unsigned flags = boxOk);

}  // namespace vexa
