// A stream's way to a file descriptor.

#ifndef KZGIS_TOOLS_SUPPORT_DESCRIPTOR_BUFFER_H
#define KZGIS_TOOLS_SUPPORT_DESCRIPTOR_BUFFER_H

#include <cstddef>
#include <streambuf>
#include <vector>

namespace kzgis::tools {

/// Writes to a descriptor, and remembers why that failed, which file streams forget.  They
/// cannot be given a descriptor either, and a file that must be made exclusively has one.
class DescriptorBuffer : public std::streambuf {
 public:
  DescriptorBuffer() : bytes_(kBytes) {}
  ~DescriptorBuffer() override { close(); }
  DescriptorBuffer(const DescriptorBuffer&) = delete;
  DescriptorBuffer& operator=(const DescriptorBuffer&) = delete;

  /// Writes there from now on.  It is closed with the buffer.
  void own(int descriptor);

  /// Writes what is left and closes; 0, or the errno of what failed first.
  int close();

 protected:
  int_type overflow(int_type c) override;
  int sync() override;

 private:
  static constexpr std::size_t kBytes = std::size_t{1} << 16U;

  std::vector<char> bytes_;
  int descriptor_ = -1;
  int error_ = 0;
};

}  // namespace kzgis::tools

#endif
