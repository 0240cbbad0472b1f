#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace qeltin::cli {

// Returns the bytes that building and writing a surface of so many points take: two pools and what
// comes and goes beside them.
double MemoryFor(double points);

// Returns the bytes that the system could give to a process, or infinity where it does not tell.
double FreeMemory();

// Returns "4.4 GB", in units of a thousand.
std::string SizeText(double bytes);

// Asks for huge pages behind a range that has not been touched yet, where it is large and the
// system has them: a large table that is visited at random then costs fewer misses in page tables.
void PreferHugePages(void* begin, std::size_t bytes);

// Reserves room for a table of so many elements, in huge pages.
template <typename T>
void ReserveTable(std::vector<T>& table, std::size_t count) {
  table.reserve(count);
  std::size_t const room = table.capacity() - table.size();
  PreferHugePages(table.data() + table.size(), sizeof(T) * room);
}

// Memory for a surface was refused.
class OutOfMemory : public std::runtime_error {
 public:
  explicit OutOfMemory(double points);
};

}  // namespace qeltin::cli
