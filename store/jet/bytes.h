#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "error.h"

namespace jet {

// A read-only window on bytes of the file. Every read is checked against the
// window's size: the engine never trusts an offset or a length it read.
class ByteView {
public:
    ByteView() = default;
    ByteView(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    const std::uint8_t* data() const { return data_; }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    bool contains(std::size_t offset, std::size_t length) const {
        return offset <= size_ && length <= size_ - offset;
    }

    ByteView sub(std::size_t offset, std::size_t length) const {
        check(offset, length);
        return ByteView(data_ + offset, length);
    }
    ByteView from(std::size_t offset) const {
        check(offset, 0);
        return ByteView(data_ + offset, size_ - offset);
    }

    std::uint8_t u8(std::size_t offset) const {
        check(offset, 1);
        return data_[offset];
    }
    std::uint16_t u16(std::size_t offset) const {
        check(offset, 2);
        return static_cast<std::uint16_t>(data_[offset] | (data_[offset + 1] << 8));
    }
    std::uint32_t u24(std::size_t offset) const {
        check(offset, 3);
        return data_[offset] | (data_[offset + 1] << 8) |
               (static_cast<std::uint32_t>(data_[offset + 2]) << 16);
    }
    std::uint32_t u32(std::size_t offset) const {
        check(offset, 4);
        std::uint32_t value;
        std::memcpy(&value, data_ + offset, 4);
        return value;  // the engine targets little-endian machines only
    }
    std::uint64_t u64(std::size_t offset) const {
        check(offset, 8);
        std::uint64_t value;
        std::memcpy(&value, data_ + offset, 8);
        return value;
    }
    double f64(std::size_t offset) const {
        std::uint64_t bits = u64(offset);
        double value;
        std::memcpy(&value, &bits, 8);
        return value;
    }
    float f32(std::size_t offset) const {
        std::uint32_t bits = u32(offset);
        float value;
        std::memcpy(&value, &bits, 4);
        return value;
    }

private:
    void check(std::size_t offset, std::size_t length) const {
        if (!contains(offset, length)) [[unlikely]] {
            outOfRange(offset, length);
        }
    }
    [[noreturn]] void outOfRange(std::size_t offset, std::size_t length) const;

    const std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;
};

static_assert(sizeof(double) == 8 && sizeof(float) == 4);

inline void ByteView::outOfRange(std::size_t offset, std::size_t length) const {
    throw Error("read of " + std::to_string(length) + " bytes at offset " +
                std::to_string(offset) + " runs past the end of a " + std::to_string(size_) +
                "-byte structure");
}

}  // namespace jet
