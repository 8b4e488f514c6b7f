#include "biff_records.h"

#include <bit>
#include <cstring>

#include "store/workbook/workbook_error.h"

namespace workbook::biff {
namespace {

[[noreturn]] void damaged(const std::string& what) {
    throw WorkbookError(WorkbookError::Kind::Damaged, "the workbook stream is damaged: " + what);
}

constexpr std::uint8_t kHighByte = 0x01;
constexpr std::uint8_t kExtended = 0x04;
constexpr std::uint8_t kRich = 0x08;

}  // namespace

RecordReader::RecordReader(std::span<const std::uint8_t> stream, std::size_t offset)
    : stream_(stream), offset_(offset) {
    if (offset > stream.size())
        damaged("a sheet starts past the end of the stream");
}

bool RecordReader::next(Record& record) {
    auto header = [&](std::uint16_t& type, std::uint16_t& length) {
        if (stream_.size() - offset_ < 4)
            return false;
        type = static_cast<std::uint16_t>(stream_[offset_] | stream_[offset_ + 1] << 8);
        length = static_cast<std::uint16_t>(stream_[offset_ + 2] | stream_[offset_ + 3] << 8);
        return true;
    };
    std::uint16_t type = 0;
    std::uint16_t length = 0;
    if (!header(type, length))
        return false;
    record.type = type;
    record.pieces.clear();
    while (true) {
        if (stream_.size() - offset_ - 4 < length)
            damaged("a record runs past the end");
        record.pieces.push_back(stream_.subspan(offset_ + 4, length));
        offset_ += 4 + std::size_t{length};
        if (!header(type, length) || type != kContinue)
            return true;
    }
}

bool Cursor::atEnd() {
    while (piece_ < pieces_.size() && offset_ == pieces_[piece_].size()) {
        ++piece_;
        offset_ = 0;
    }
    return piece_ == pieces_.size();
}

std::uint8_t Cursor::u8() {
    if (atEnd())
        damaged("a record is cut short");
    return pieces_[piece_][offset_++];
}

std::uint16_t Cursor::u16() {
    const std::uint8_t low = u8();
    return static_cast<std::uint16_t>(low | u8() << 8);
}

std::uint32_t Cursor::u32() {
    const std::uint32_t low = u16();
    return low | static_cast<std::uint32_t>(u16()) << 16;
}

double Cursor::f64() {
    const std::uint64_t low = u32();
    return std::bit_cast<double>(low | static_cast<std::uint64_t>(u32()) << 32);
}

void Cursor::skip(std::size_t count) {
    while (count > 0) {
        if (atEnd())
            damaged("a record is cut short");
        const std::size_t step = std::min(count, pieces_[piece_].size() - offset_);
        offset_ += step;
        count -= step;
    }
}

std::u16string Cursor::characters(std::size_t count, bool wide) {
    std::u16string text;
    while (text.size() < count) {
        if (piece_ >= pieces_.size())
            damaged("a string is cut short");
        if (offset_ == pieces_[piece_].size()) {
            // The characters go on in the next CONTINUE, under a flags byte of their own.
            if (piece_ + 1 == pieces_.size())
                damaged("a string is cut short");
            ++piece_;
            offset_ = 0;
            wide = (u8() & kHighByte) != 0;
            continue;
        }
        text.push_back(wide ? static_cast<char16_t>(u16()) : static_cast<char16_t>(u8()));
    }
    return text;
}

std::u16string Cursor::shortString() {
    const std::size_t count = u8();
    const bool wide = (u8() & kHighByte) != 0;
    return characters(count, wide);
}

std::u16string Cursor::unicodeString() {
    const std::size_t count = u16();
    const bool wide = (u8() & kHighByte) != 0;
    return characters(count, wide);
}

std::u16string Cursor::richString() {
    const std::size_t count = u16();
    const std::uint8_t flags = u8();
    const std::size_t runs = (flags & kRich) != 0 ? u16() : 0;
    const std::size_t phonetic = (flags & kExtended) != 0 ? u32() : 0;
    std::u16string text = characters(count, (flags & kHighByte) != 0);
    skip(4 * runs);
    skip(phonetic);
    return text;
}

}  // namespace workbook::biff
