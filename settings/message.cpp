#include "settings/message.h"

#include <cstdarg>
#include <cstdio>
#include <iostream>

namespace nocturnel {
namespace {
MessageSink& currentSink() {
    static MessageSink sink = printMessageToStderr;
    return sink;
}
QuestionSink& currentQuestionSink() {
    static QuestionSink sink = [](std::string_view) { return false; };
    return sink;
}
}  // namespace

void printMessageToStderr(const Message& message) {
    std::string title = message.title;
    while (!title.empty() && title.back() == '\n') title.pop_back();
    std::cerr << kMessageCaption << ": " << title;
    if (!message.detail.empty()) {
        std::string detail = message.detail;
        while (!detail.empty() && detail.back() == '\n') detail.pop_back();
        std::cerr << "\n  " << detail;
    }
    std::cerr << std::endl;
}

void showMessage(std::string_view title, std::string_view detail) {
    Message message{std::string(title), std::string(detail)};
    if (currentSink()) currentSink()(message);
}

void showMessagef(std::string_view detail, const char* titleFormat, ...) {
    char buffer[512];
    va_list args;
    va_start(args, titleFormat);
    std::vsnprintf(buffer, sizeof buffer, titleFormat, args);
    va_end(args);
    showMessage(buffer, detail);
}

bool askYesNo(std::string_view question) {
    return currentQuestionSink() ? currentQuestionSink()(question) : false;
}

MessageSink setMessageSink(MessageSink sink) {
    MessageSink previous = std::move(currentSink());
    currentSink() = std::move(sink);
    return previous;
}

QuestionSink setQuestionSink(QuestionSink sink) {
    QuestionSink previous = std::move(currentQuestionSink());
    currentQuestionSink() = std::move(sink);
    return previous;
}

MessageCapture::MessageCapture() {
    previous_ = setMessageSink([this](const Message& m) { messages_.push_back(m); });
}
MessageCapture::~MessageCapture() { setMessageSink(std::move(previous_)); }

bool MessageCapture::shown(std::string_view title) const {
    for (const auto& m : messages_)
        if (m.title == title) return true;
    return false;
}

QuestionAnswerer::QuestionAnswerer(bool answer) {
    previous_ = setQuestionSink([this, answer](std::string_view q) {
        questions_.emplace_back(q);
        return answer;
    });
}
QuestionAnswerer::~QuestionAnswerer() { setQuestionSink(std::move(previous_)); }

}  // namespace nocturnel
