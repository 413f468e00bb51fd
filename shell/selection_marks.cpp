#include "shell/selection_marks.h"

#include "plans/selection_list.h"
#include "settings/message.h"

namespace nocturnel {

std::vector<MarkedPlace> currentSelectionMarks() {
    std::vector<MarkedPlace> marks;
    SelectionList list;
    SelectionCriteria criteria;
    {
        MessageCapture quiet;
        if (!loadCurrentSelection(list, criteria)) return marks;
    }
    marks.reserve(list.items.size());
    for (const ObjectReference& o : list.items) marks.push_back({o.raHours, o.decDeg});
    return marks;
}

}  // namespace nocturnel
