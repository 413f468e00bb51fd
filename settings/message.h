#pragma once
// The program's one message box. Every failure of every subsystem reaches the user here:
// caption "Information", a first line and a detail line (shown as "%S\n%S").
// Where the box appears is decided by the installed sink: the command line prints to
// standard error, the web interface shows a modal box, tests capture the texts.
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace nocturnel {

inline constexpr std::string_view kMessageCaption = "Information";

struct Message {
    std::string title;   // first line
    std::string detail;  // second line (may be empty)
    std::string text() const { return title + "\n" + detail; }  // the "%S\n%S" form
};

using MessageSink = std::function<void(const Message&)>;
// A yes/no question ("Would you want to restore your last alignment?"); true for Yes.
using QuestionSink = std::function<bool(std::string_view question)>;

// Shows one message through the current sink.
void showMessage(std::string_view title, std::string_view detail = {});
// printf-style first line, for the texts with "%d" / "%s" fields.
void showMessagef(std::string_view detail, const char* titleFormat, ...) __attribute__((format(printf, 2, 3)));

// Asks a yes/no question through the current question sink (default: No).
bool askYesNo(std::string_view question);

// Installs a sink and returns the previous one.
MessageSink setMessageSink(MessageSink sink);
QuestionSink setQuestionSink(QuestionSink sink);

// Sink that prints "Information: <title>" and the detail line to standard error.
void printMessageToStderr(const Message& message);

// Captures every message shown while it lives (tests, and the web layer's request scope).
class MessageCapture {
public:
    MessageCapture();
    ~MessageCapture();
    MessageCapture(const MessageCapture&) = delete;
    MessageCapture& operator=(const MessageCapture&) = delete;
    const std::vector<Message>& messages() const { return messages_; }
    bool shown(std::string_view title) const;  // was a message with this exact first line shown?
    std::string lastTitle() const { return messages_.empty() ? std::string{} : messages_.back().title; }
    void clear() { messages_.clear(); }

private:
    std::vector<Message> messages_;
    MessageSink previous_;
};

// Answers every question with a fixed reply while it lives, recording the questions asked.
class QuestionAnswerer {
public:
    explicit QuestionAnswerer(bool answer);
    ~QuestionAnswerer();
    QuestionAnswerer(const QuestionAnswerer&) = delete;
    QuestionAnswerer& operator=(const QuestionAnswerer&) = delete;
    const std::vector<std::string>& questions() const { return questions_; }

private:
    std::vector<std::string> questions_;
    QuestionSink previous_;
};

}  // namespace nocturnel
