#include "plans/xml_reader.h"

#include <cstdint>

namespace nocturnel {

std::string_view XmlElement::localName() const {
    const auto colon = name.find(':');
    return colon == std::string::npos ? std::string_view(name) : std::string_view(name).substr(colon + 1);
}

const std::string* XmlElement::attribute(std::string_view wanted) const {
    for (const auto& [key, value] : attributes) {
        if (key == wanted) return &value;
        const auto colon = key.find(':');
        if (colon != std::string::npos && std::string_view(key).substr(colon + 1) == wanted) return &value;
    }
    return nullptr;
}

const XmlElement* XmlElement::child(std::string_view wanted) const {
    for (const auto& c : children)
        if (c->localName() == wanted) return c.get();
    return nullptr;
}

std::vector<const XmlElement*> XmlElement::childrenNamed(std::string_view wanted) const {
    std::vector<const XmlElement*> found;
    for (const auto& c : children)
        if (c->localName() == wanted) found.push_back(c.get());
    return found;
}

std::string XmlElement::childText(std::string_view wanted) const {
    const XmlElement* c = child(wanted);
    if (c == nullptr) return {};
    const auto first = c->text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return {};
    const auto last = c->text.find_last_not_of(" \t\r\n");
    return c->text.substr(first, last - first + 1);
}

std::string xmlEscape(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '&': out += "&amp;"; break;
            case '<': out += "&lt;"; break;
            case '>': out += "&gt;"; break;
            case '"': out += "&quot;"; break;
            case '\'': out += "&apos;"; break;
            default: out += c;
        }
    }
    return out;
}

namespace {

constexpr int kMaxDepth = 64;
constexpr std::size_t kMaxDocument = 16u << 20;

void appendUtf8(std::string& out, uint32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

class Parser {
public:
    Parser(std::string_view doc, XmlParseError& error) : doc_(doc), error_(error) {}

    std::unique_ptr<XmlElement> document() {
        skipProlog();
        if (failed_) return nullptr;
        if (!at("<")) return fail("no root element");
        auto root = element(0);
        if (!root) return nullptr;
        skipMisc();
        if (!failed_ && pos_ < doc_.size()) return fail("content after the root element");
        return failed_ ? nullptr : std::move(root);
    }

private:
    std::string_view doc_;
    XmlParseError& error_;
    std::size_t pos_ = 0;
    bool failed_ = false;

    std::nullptr_t fail(std::string what) {
        if (!failed_) {
            failed_ = true;
            error_.what = std::move(what);
            error_.line = 1;
            for (std::size_t i = 0; i < pos_ && i < doc_.size(); ++i)
                if (doc_[i] == '\n') ++error_.line;
        }
        return nullptr;
    }
    bool at(std::string_view s) const { return doc_.substr(pos_, s.size()) == s; }
    static bool space(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
    void skipSpace() {
        while (pos_ < doc_.size() && space(doc_[pos_])) ++pos_;
    }
    bool skipPast(std::string_view end) {
        const auto found = doc_.find(end, pos_);
        if (found == std::string_view::npos) {
            pos_ = doc_.size();
            fail("unterminated markup");
            return false;
        }
        pos_ = found + end.size();
        return true;
    }
    // Comments, processing instructions and white space between elements.
    void skipMisc() {
        for (;;) {
            skipSpace();
            if (at("<!--")) {
                if (!skipPast("-->")) return;
            } else if (at("<?")) {
                if (!skipPast("?>")) return;
            } else {
                return;
            }
        }
    }
    void skipProlog() {
        if (at("\xEF\xBB\xBF")) pos_ += 3;
        skipMisc();
        if (at("<!DOCTYPE")) {
            const auto close = doc_.find('>', pos_);
            const auto subset = doc_.find('[', pos_);
            if (subset != std::string_view::npos && subset < close) {
                fail("a DOCTYPE with an internal subset is not read");
                return;
            }
            if (!skipPast(">")) return;
            skipMisc();
        }
    }
    static bool nameChar(char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == ':' ||
               c == '-' || c == '.' || (static_cast<unsigned char>(c) >= 0x80);
    }
    std::string name() {
        const std::size_t start = pos_;
        while (pos_ < doc_.size() && nameChar(doc_[pos_])) ++pos_;
        if (pos_ == start) fail("a name is expected");
        return std::string(doc_.substr(start, pos_ - start));
    }
    // Text up to `stop` with references replaced.
    bool characters(char stop, std::string& out) {
        while (pos_ < doc_.size() && doc_[pos_] != stop) {
            const char c = doc_[pos_];
            if (c == '<' && stop != '<') return fail("'<' in an attribute value"), false;
            if (c != '&') {
                out += c;
                ++pos_;
                continue;
            }
            const auto semi = doc_.find(';', pos_);
            if (semi == std::string_view::npos || semi - pos_ > 12) return fail("unterminated reference"), false;
            const std::string_view ref = doc_.substr(pos_ + 1, semi - pos_ - 1);
            pos_ = semi + 1;
            if (ref == "lt") out += '<';
            else if (ref == "gt") out += '>';
            else if (ref == "amp") out += '&';
            else if (ref == "quot") out += '"';
            else if (ref == "apos") out += '\'';
            else if (ref.size() > 1 && ref[0] == '#') {
                uint32_t cp = 0;
                const bool hex = ref[1] == 'x';
                const std::string_view digits = ref.substr(hex ? 2 : 1);
                if (digits.empty()) return fail("bad character reference"), false;
                for (const char d : digits) {
                    int v;
                    if (d >= '0' && d <= '9') v = d - '0';
                    else if (hex && d >= 'a' && d <= 'f') v = d - 'a' + 10;
                    else if (hex && d >= 'A' && d <= 'F') v = d - 'A' + 10;
                    else return fail("bad character reference"), false;
                    cp = cp * (hex ? 16 : 10) + static_cast<uint32_t>(v);
                    if (cp > 0x10FFFF) return fail("bad character reference"), false;
                }
                if (cp == 0 || (cp >= 0xD800 && cp <= 0xDFFF)) return fail("bad character reference"), false;
                appendUtf8(out, cp);
            } else {
                return fail("unknown entity"), false;
            }
        }
        return true;
    }
    std::unique_ptr<XmlElement> element(int depth) {
        if (depth >= kMaxDepth) return fail("elements nested too deeply");
        ++pos_;  // '<'
        auto e = std::make_unique<XmlElement>();
        e->name = name();
        if (failed_) return nullptr;
        for (;;) {
            skipSpace();
            if (pos_ >= doc_.size()) return fail("unterminated start tag");
            if (at("/>")) {
                pos_ += 2;
                return e;
            }
            if (doc_[pos_] == '>') {
                ++pos_;
                break;
            }
            std::string key = name();
            if (failed_) return nullptr;
            skipSpace();
            if (!at("=")) return fail("'=' expected after an attribute name");
            ++pos_;
            skipSpace();
            if (pos_ >= doc_.size() || (doc_[pos_] != '"' && doc_[pos_] != '\'')) return fail("quoted value expected");
            const char quote = doc_[pos_++];
            std::string value;
            if (!characters(quote, value)) return nullptr;
            if (pos_ >= doc_.size()) return fail("unterminated attribute value");
            ++pos_;
            e->attributes.emplace_back(std::move(key), std::move(value));
        }
        // Content up to the matching end tag.
        for (;;) {
            if (pos_ >= doc_.size()) return fail("unterminated element " + e->name);
            if (at("</")) {
                pos_ += 2;
                const std::string end = name();
                if (failed_) return nullptr;
                if (end != e->name) return fail("end tag " + end + " does not close " + e->name);
                skipSpace();
                if (!at(">")) return fail("'>' expected");
                ++pos_;
                return e;
            }
            if (at("<!--")) {
                if (!skipPast("-->")) return nullptr;
            } else if (at("<![CDATA[")) {
                pos_ += 9;
                const auto end = doc_.find("]]>", pos_);
                if (end == std::string_view::npos) return fail("unterminated CDATA");
                e->text += doc_.substr(pos_, end - pos_);
                pos_ = end + 3;
            } else if (at("<?")) {
                if (!skipPast("?>")) return nullptr;
            } else if (at("<!")) {
                return fail("unexpected declaration");
            } else if (doc_[pos_] == '<') {
                auto child = element(depth + 1);
                if (!child) return nullptr;
                e->children.push_back(std::move(child));
            } else {
                if (!characters('<', e->text)) return nullptr;
            }
        }
    }
};

}  // namespace

std::optional<std::unique_ptr<XmlElement>> parseXml(std::string_view document, XmlParseError& error) {
    if (document.size() > kMaxDocument) {
        error = {0, "the document is larger than 16 MiB"};
        return std::nullopt;
    }
    Parser parser(document, error);
    auto root = parser.document();
    if (!root) return std::nullopt;
    return root;
}

}  // namespace nocturnel
