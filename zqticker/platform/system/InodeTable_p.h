// What an event queue watches, by the kernel's watches: files, folders, and the folders of both.
#pragma once

#include "zqticker/platform/system/Inode_p.h"
#include "zqticker/platform/system/InotifyCalls_p.h"

#include <QtCore/QHash>

#include <unordered_set>
#include <vector>

namespace zq::platform {

// Not thread-safe.
class InodeTable {
 public:
  InodeTable(int instance, InotifyCalls calls) : instance_(instance), calls_(calls) {}

  InodeTable(const InodeTable&) = delete;
  InodeTable& operator=(const InodeTable&) = delete;

  // Watches what is at `path` until the last reference is gone; the table outlives them all. A
  // short cut for what stands in a folder that is known by that very path and is no symbolic link;
  // null for anything else.
  std::shared_ptr<Inode> watchInKnownFolder(const QByteArray& path);
  // Watches what the path-only descriptor `file` is open on. Null with errno where the kernel
  // refuses.
  std::shared_ptr<Inode> watch(int file);

  // Those of a watch are linked by `nextOfWatch`.
  Inode* firstOfWatch(int watch) const;
  std::vector<Inode*> named(const Inode& folder, const QByteArray& name) const;
  // To be called when the kernel has ended a watch by itself.
  void forgetWatch(int watch);

  void setName(Inode& inode, const std::shared_ptr<Inode>& folder, const QByteArray& name);
  // As a path without symbolic links.
  void setName(Inode& inode, const QByteArray& path);
  void forgetName(Inode& inode); // the folder stays
  void forgetPlace(Inode& inode);
  void setPath(Inode& folder, const QByteArray& path);

  // Notes nothing about what is not registered.
  void note(Inode& inode, std::uint32_t what);
  void noteLoss();
  // Those with new notes, in the order of their first; emptied by the caller.
  std::vector<Inode*>& noted() { return noted_; }

 private:
  friend struct Inode;

  struct Name {
    const Inode* folder;
    const QByteArray& name;
  };
  struct NameHash {
    using is_transparent = void;
    std::size_t operator()(const Name& name) const { return qHashMulti(0, name.folder, name.name); }
    std::size_t operator()(const Inode* inode) const {
      return (*this)(Name{inode->folder.get(), inode->name});
    }
  };
  struct NameEqual {
    using is_transparent = void;
    bool operator()(const Inode* a, const Inode* b) const {
      return a->folder == b->folder && a->name == b->name;
    }
    bool operator()(const Name& a, const Inode* b) const {
      return a.folder == b->folder.get() && a.name == b->name;
    }
    bool operator()(const Inode* a, const Name& b) const { return (*this)(b, a); }
  };

  int watchFile(const char* path, const FileSnapshot& snapshot, std::uint32_t how) const;
  std::shared_ptr<Inode> folderAt(const QByteArray& path);
  std::shared_ptr<Inode> inodeOfFile(int watch, const FileSnapshot& snapshot,
                                     const std::shared_ptr<Inode>& folder, const QByteArray& name);
  std::shared_ptr<Inode> newInode(int watch, const FileSnapshot& snapshot);
  void end(Inode& inode);

  int instance_;
  InotifyCalls calls_;
  QHash<int, Inode*> byWatch_;
  std::unordered_multiset<Inode*, NameHash, NameEqual> byName_;
  QHash<QByteArray, Inode*> folders_; // those whose path is known
  std::vector<Inode*> noted_;
};

} // namespace zq::platform
