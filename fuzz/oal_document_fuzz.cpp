// OpenAstronomyLog documents from other logging programs: the XML reader and the import of
// their observations as log records.
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "plans/oal_exchange.h"

using namespace nocturnel;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::silenceMessages();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string_view document = fuzz::bytesOf(data, size);
    // The import parses the document itself (plans/xml_reader.h): one parse per input.
    std::vector<ObserverLog> logs;
    int skipped = 0;
    if (logsFromOalDocument(document, -420, logs, skipped) && !logs.empty()) {
        // What was read can be written back as a document, and read again.
        const std::string again = oalDocumentFromLogs(logs, -420);
        std::vector<ObserverLog> back;
        if (!logsFromOalDocument(again, -420, back, skipped) || back.size() != logs.size()) __builtin_trap();
    }
    return 0;
}
