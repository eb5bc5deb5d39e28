#include "zqticker/platform/system/nearby_search_p.h"

#include <QtCore/QString>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <memory>
#include <vector>

namespace zq::platform {
namespace {

constexpr int MostNames = 8192;
constexpr int MostFolders = 128;

class NearbySearch {
 public:
  explicit NearbySearch(const FileSnapshot& wanted) : wanted_(wanted) {}

  // Whether it stands in `folder`; adds the folders in there to `within`.
  bool isIn(const QByteArray& folder, std::vector<QByteArray>* within);
  const QByteArray& path() const { return path_; }

 private:
  bool isAt(const QByteArray& path);

  const FileSnapshot& wanted_;
  QByteArray path_;
  int names_ = 0;
  int folders_ = 0;
};

bool NearbySearch::isIn(const QByteArray& folder, std::vector<QByteArray>* within) {
  if (++folders_ > MostFolders)
    return false;
  const int descriptor =
      ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0)
    return false;
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(::fdopendir(descriptor), ::closedir);
  if (!entries) {
    ::close(descriptor);
    return false;
  }
  const QByteArray prefix = folder.endsWith('/') ? folder : QByteArray(folder + '/');
  while (const dirent* entry = ++names_ > MostNames ? nullptr : ::readdir(entries.get())) {
    const QByteArray name =
        QByteArray::fromRawData(entry->d_name, qsizetype(qstrlen(entry->d_name)));
    if (name == "." || name == "..")
      continue;
    if (entry->d_ino == wanted_.inode && isAt(QByteArray(prefix + name)))
      return true;
    if (within && entry->d_type == DT_DIR)
      within->push_back(QByteArray(prefix + name));
  }
  return false;
}

bool NearbySearch::isAt(const QByteArray& path) {
  const auto found = FileSnapshot::of(path);
  if (!found || !found->isSameFile(wanted_))
    return false;
  path_ = path;
  return true;
}

} // namespace

QByteArray findNearby(const QByteArray& folder, const FileSnapshot& wanted) {
  NearbySearch search(wanted);
  std::vector<QByteArray> within;
  const auto isInOneOf = [&](const std::vector<QByteArray>& folders) {
    for (const auto& each : folders)
      if (each != folder && search.isIn(each, nullptr))
        return true;
    return false;
  };
  if (search.isIn(folder, &within) || isInOneOf(within))
    return search.path();
  const QByteArray above = folder.left(std::max<qsizetype>(folder.lastIndexOf('/'), 1));
  within.clear();
  if (above != folder && (search.isIn(above, &within) || isInOneOf(within)))
    return search.path();
  return {};
}

} // namespace zq::platform
