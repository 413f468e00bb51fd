#pragma once
// Questions whose answer moves the mount or changes where it believes it points (the
// Takahashi zenith question). Such a question is never answered by a default: the installed
// sink either gets an answer from someone (a terminal, an explicit scripted answer, a dialog)
// or declines, and the protocol then leaves the mount as it is.
#include <functional>
#include <optional>
#include <string_view>

namespace nocturnel {

// Yes, No, or nothing when nobody can answer.
using MountQuestionSink = std::function<std::optional<bool>(std::string_view question)>;

// The default sink asks through askYesNo (settings/message.h). Returns the previous sink;
// an empty sink restores the default.
MountQuestionSink setMountQuestionSink(MountQuestionSink sink);
std::optional<bool> askMountQuestion(std::string_view question);

}  // namespace nocturnel
