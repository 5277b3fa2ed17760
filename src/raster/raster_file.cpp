#include "raster/raster_file.h"

namespace kapdf {

CRasterFile::CRasterFile(platform::FileHandle file)
    : platform::FileHandle(std::move(file)), CZVFFile(platform::FileHandle::get(), true, {}) {}

std::unique_ptr<CRasterFile> CRasterFile::Create() {
  platform::FileHandle file = platform::OpenTemporaryFile();
  return file ? std::unique_ptr<CRasterFile>(new CRasterFile(std::move(file))) : nullptr;
}

bool CRasterFile::SeekRow(uint32_t index) {
  return Seek(static_cast<int64_t>(index) * static_cast<int64_t>(rowBytes_), SeekOrigin::kStart);
}

bool CRasterFile::WriteRow(uint32_t index, const void *row) {
  return SeekRow(index) && Write(row, rowBytes_) == rowBytes_;
}

bool CRasterFile::ReadRow(uint32_t index, void *row) { return SeekRow(index) && Read(row, rowBytes_) == rowBytes_; }

}  // namespace kapdf
