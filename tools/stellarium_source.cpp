// Stellarium's deep-sky catalogue: the Qt data stream of catalog.dat (big-endian; strings are a
// 32-bit byte length followed by UTF-16BE, 0xFFFFFFFF for a null string; numbers as u32/f64),
// and the names.dat text file. Field order follows the documented catalog.txt columns.
#include <zlib.h>

#include <cctype>
#include <cmath>
#include <cstring>
#include <numbers>

#include "tools/sources.h"

namespace nocturnel {
namespace {

class StreamReader {
public:
    explicit StreamReader(std::string_view bytes) : bytes_(bytes) {}
    bool atEnd() const { return pos_ == bytes_.size(); }
    size_t position() const { return pos_; }
    bool u32(uint32_t& v) {
        if (bytes_.size() - pos_ < 4) return false;
        v = 0;
        for (int i = 0; i < 4; ++i) v = (v << 8) | static_cast<uint8_t>(bytes_[pos_++]);
        return true;
    }
    bool f64(double& v) {
        if (bytes_.size() - pos_ < 8) return false;
        uint64_t bits = 0;
        for (int i = 0; i < 8; ++i) bits = (bits << 8) | static_cast<uint8_t>(bytes_[pos_++]);
        std::memcpy(&v, &bits, sizeof v);
        return true;
    }
    // Reads a string and converts it to UTF-8.
    bool text(std::string& out) {
        uint32_t length = 0;
        out.clear();
        if (!u32(length)) return false;
        if (length == 0xFFFFFFFFu) return true;
        if (length % 2 != 0 || bytes_.size() - pos_ < length) return false;
        for (uint32_t i = 0; i < length; i += 2) {
            uint32_t c = (static_cast<uint8_t>(bytes_[pos_ + i]) << 8) | static_cast<uint8_t>(bytes_[pos_ + i + 1]);
            if (c >= 0xD800 && c < 0xE000) c = '?';  // surrogate pairs: never in this catalogue's ids
            if (c < 0x80) {
                out += static_cast<char>(c);
            } else if (c < 0x800) {
                out += static_cast<char>(0xC0 | (c >> 6));
                out += static_cast<char>(0x80 | (c & 0x3F));
            } else {
                out += static_cast<char>(0xE0 | (c >> 12));
                out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
                out += static_cast<char>(0x80 | (c & 0x3F));
            }
        }
        pos_ += length;
        return true;
    }

private:
    std::string_view bytes_;
    size_t pos_ = 0;
};

class StreamWriter {
public:
    void u32(uint32_t v) {
        for (int shift = 24; shift >= 0; shift -= 8) out_ += static_cast<char>((v >> shift) & 0xFF);
    }
    void f64(double v) {
        uint64_t bits;
        std::memcpy(&bits, &v, sizeof v);
        for (int shift = 56; shift >= 0; shift -= 8) out_ += static_cast<char>((bits >> shift) & 0xFF);
    }
    void text(const std::string& s) {  // ASCII only: enough for test catalogues
        u32(static_cast<uint32_t>(s.size() * 2));
        for (char c : s) {
            out_ += '\0';
            out_ += c;
        }
    }
    std::string take() { return std::move(out_); }

private:
    std::string out_;
};

// The record's fields in stream order; Reader/Writer visit them identically.
template <typename Visitor>
bool visitObject(Visitor& v, auto& o) {
    return v.u32(o.id) && v.f64(o.raRad) && v.f64(o.decRad) && v.f64(o.bMag) && v.f64(o.vMag) && v.u32(o.type) &&
           v.text(o.morphology) && v.f64(o.majorDeg) && v.f64(o.minorDeg) && v.u32(o.orientationDeg) &&
           v.f64(o.redshift) && v.f64(o.redshiftError) && v.f64(o.parallax) && v.f64(o.parallaxError) &&
           v.f64(o.distance) && v.f64(o.distanceError) && v.u32(o.ngc) && v.u32(o.ic) && v.u32(o.messier) &&
           v.u32(o.caldwell) && v.u32(o.barnard) && v.u32(o.sharpless) && v.u32(o.vdb) && v.u32(o.rcw) &&
           v.u32(o.ldn) && v.u32(o.lbn) && v.u32(o.collinder) && v.u32(o.melotte) && v.u32(o.pgc) && v.u32(o.ugc) &&
           v.text(o.cederblad) && v.u32(o.arp) && v.u32(o.vv) && v.text(o.pk) && v.text(o.png) && v.text(o.snrg) &&
           v.text(o.abell) && v.text(o.hcg) && v.text(o.eso) && v.text(o.vdbh) && v.u32(o.dwb) && v.u32(o.trumpler) &&
           v.u32(o.stock) && v.u32(o.ruprecht) && v.u32(o.vdbHagen);
}

// Adapts the writer to the visitor's bool-returning calls.
struct WritingVisitor {
    StreamWriter& w;
    bool u32(uint32_t v) { return w.u32(v), true; }
    bool f64(double v) { return w.f64(v), true; }
    bool text(const std::string& s) { return w.text(s), true; }
};

std::string trim(std::string_view s) {
    const size_t a = s.find_first_not_of(" \t");
    if (a == std::string_view::npos) return {};
    const size_t b = s.find_last_not_of(" \t\r");
    return std::string(s.substr(a, b - a + 1));
}
}  // namespace

bool parseStellariumCatalogue(std::string_view bytes, StellariumCatalogue& catalogue, std::string& error) {
    StreamReader reader(bytes);
    catalogue.objects.clear();
    if (!reader.text(catalogue.version) || !reader.text(catalogue.edition) || catalogue.version.empty() ||
        catalogue.version[0] < '0' || catalogue.version[0] > '9') {
        error = "no version header";
        return false;
    }
    while (!reader.atEnd()) {
        StellariumObject o;
        const size_t start = reader.position();
        if (!visitObject(reader, o)) {
            error = "record " + std::to_string(catalogue.objects.size() + 1) + " at byte " + std::to_string(start) +
                    " is truncated";
            return false;
        }
        if (!std::isfinite(o.raRad) || !std::isfinite(o.decRad) || o.raRad < -0.001 || o.raRad > 2 * std::numbers::pi + 0.001 ||
            std::abs(o.decRad) > std::numbers::pi / 2 + 1e-6 || !std::isfinite(o.vMag) || !std::isfinite(o.bMag) ||
            !std::isfinite(o.majorDeg) || !std::isfinite(o.minorDeg)) {
            error = "record " + std::to_string(o.id) + " has an impossible position or magnitude";
            return false;
        }
        catalogue.objects.push_back(std::move(o));
    }
    if (catalogue.objects.empty()) {
        error = "no objects";
        return false;
    }
    return true;
}

std::string writeStellariumCatalogue(const StellariumCatalogue& catalogue) {
    StreamWriter writer;
    writer.text(catalogue.version);
    writer.text(catalogue.edition);
    WritingVisitor visitor{writer};
    for (const StellariumObject& o : catalogue.objects) visitObject(visitor, o);
    return writer.take();
}

bool parseStellariumNames(std::string_view text, std::map<std::string, std::vector<std::string>>& names,
                          std::string& error) {
    names.clear();
    size_t lineNumber = 0;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
        ++lineNumber;
        if (line.empty() || line[0] == '#' || trim(line).empty()) continue;
        const size_t open = line.find("_(\"");
        const size_t close = open == std::string_view::npos ? open : line.find("\")", open + 3);
        if (line.size() < 20 || open == std::string_view::npos || close == std::string_view::npos) {
            error = "line " + std::to_string(lineNumber) + " is not \"prefix id _(\\\"name\\\")\"";
            return false;
        }
        std::string prefix = trim(line.substr(0, 5));
        for (char& c : prefix) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        const std::string id = trim(line.substr(5, 15));
        names[prefix + " " + id].push_back(std::string(line.substr(open + 3, close - open - 3)));
    }
    return true;
}

bool gunzip(std::string_view compressed, std::string& out, std::string& error) {
    out.clear();
    if (compressed.size() < 18 || static_cast<uint8_t>(compressed[0]) != 0x1F || static_cast<uint8_t>(compressed[1]) != 0x8B) {
        error = "not a gzip file";
        return false;
    }
    z_stream stream{};
    if (inflateInit2(&stream, 16 + MAX_WBITS) != Z_OK) {
        error = "zlib could not start";
        return false;
    }
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(compressed.data()));
    stream.avail_in = static_cast<uInt>(compressed.size());
    char buffer[1 << 16];
    int status = Z_OK;
    while (status == Z_OK) {
        stream.next_out = reinterpret_cast<Bytef*>(buffer);
        stream.avail_out = sizeof buffer;
        status = inflate(&stream, Z_NO_FLUSH);
        out.append(buffer, sizeof buffer - stream.avail_out);
        if (status == Z_BUF_ERROR && stream.avail_in == 0) break;
    }
    inflateEnd(&stream);
    if (status != Z_STREAM_END) {
        error = "gzip data is truncated or corrupt";
        return false;
    }
    return true;
}

std::string gzipBytes(std::string_view bytes) {
    z_stream stream{};
    deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, 16 + MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&stream, static_cast<uLong>(bytes.size())) + 32, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

}  // namespace nocturnel
