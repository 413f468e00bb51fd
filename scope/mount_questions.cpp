#include "scope/mount_questions.h"

#include <utility>

#include "settings/message.h"

namespace nocturnel {
namespace {
MountQuestionSink& sinkRef() {
    static MountQuestionSink sink;
    return sink;
}
}  // namespace

MountQuestionSink setMountQuestionSink(MountQuestionSink sink) { return std::exchange(sinkRef(), std::move(sink)); }

std::optional<bool> askMountQuestion(std::string_view question) {
    if (sinkRef()) return sinkRef()(question);
    return askYesNo(question);
}

}  // namespace nocturnel
