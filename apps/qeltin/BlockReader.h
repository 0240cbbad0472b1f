#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace qeltin::cli {

// Returns the little-endian number at `bytes`, whatever the order of bytes in this machine.
template <typename T>
T LittleEndian(unsigned char const* bytes) {
  static_assert(sizeof(T) <= 8);
  using Bits = std::conditional_t<
      sizeof(T) == 8, std::uint64_t,
      std::conditional_t<sizeof(T) == 4, std::uint32_t,
                         std::conditional_t<sizeof(T) == 2, std::uint16_t, std::uint8_t>>>;
  Bits bits = 0;
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    bits = static_cast<Bits>(bits | static_cast<Bits>(static_cast<Bits>(bytes[i]) << (8 * i)));
  }
  return std::bit_cast<T>(bits);
}

// Reads a binary file front to back, record by record, in constant memory. Throws Failure with the
// system's reason where the file cannot be opened or read.
class BlockReader {
 public:
  explicit BlockReader(std::string const& name);
  ~BlockReader();
  BlockReader(BlockReader const&) = delete;
  BlockReader& operator=(BlockReader const&) = delete;

  // Goes on at `offset` from the start, which may lie beyond the end.
  void Seek(std::uint64_t offset);

  // Returns the next `size` bytes, at most LARGEST, or null where the file ends before them; the
  // place is then the end. They stay valid until the next call.
  unsigned char const* Next(std::size_t size);

  // Returns the next number, or `otherwise` where the file ends before it.
  template <typename T>
  T Number(T otherwise) {
    unsigned char const* const bytes = Next(sizeof(T));
    return bytes == nullptr ? otherwise : LittleEndian<T>(bytes);
  }

  std::uint64_t Size() const { return m_iSize; }
  std::uint64_t Position() const { return m_iBlock + m_iNext; }  // of the next byte, from the start

  static constexpr std::size_t LARGEST = 1 << 16;

 private:
  void Refill();

  std::string m_Name;
  int m_iDescriptor = -1;
  std::uint64_t m_iSize = 0;
  std::vector<unsigned char> m_Buffer;
  std::uint64_t m_iBlock = 0;  // where in the file the buffer begins
  std::size_t m_iNext = 0;     // in the buffer
  std::size_t m_iEnd = 0;
};

}  // namespace qeltin::cli
