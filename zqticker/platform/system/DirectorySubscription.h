// Being called when something changes in a folder.
#pragma once

#include "zqticker/zqticker_export.h"

#include <QtCore/QByteArray>

#include <cstdint>

namespace zq::platform {

// A subscription's handle: no object, only a value that is never given again.
struct DirectorySubscription;

// Something in the folder has changed.
constexpr std::uint32_t DirectoryModifiedMessage = 1;

// Called with a message, flags (none is in use: 0), and the reference and the handle of the
// subscription.
using DirectorySubscriptionCallback = void (*)(std::uint32_t message, std::uint32_t flags,
                                               void* reference, DirectorySubscription* handle);

// Has `callback` called whenever something changes in the folder at `path`, from now on, until
// unsubscribe or the end of this thread or of the application. Returns 0 and the handle, or an
// errno value, and the handle stays as it was.
//
// A change is: an entry comes, goes or is renamed, is written to, truncated, or has its mode,
// owner, times or extended attributes changed; the folder's own mode and the like are changed, it
// is renamed, removed or unmounted. What happens inside subfolders is none, nor is reading, nor a
// store through a memory map. The folder is meant, not its name: it is followed when it is renamed,
// and another one that takes its name later is not. After its removal, which is one change, nothing
// is told any more; the handle lives on until it is unsubscribed.
//
// Changes that come close together are told by one call: it comes when nothing has changed for
// 30 ms, enough for a program to finish a file, and little enough to seem immediate; or 500 ms
// after the first of them, when they do not end: a package being unpacked gives two calls a second.
// Each subscription of a folder has its own calls. Where changes come faster than the kernel keeps
// them, all subscriptions of the thread are called.
//
// Calls come from the event loop of the thread that subscribed, and wait for it to run. What a
// callback raises is logged there. It may subscribe, unsubscribe any handle, and run event loops.
//
// `path` is in the system's own notation; symbolic links are followed, and nothing blocks. Refused
// are: a path at which there is nothing, an empty one, one with a null byte (ENOENT); something
// that is no folder (ENOTDIR); a folder that must not be read (EACCES); flags other than 0, no
// callback, no place for the handle (EINVAL); a process without QCoreApplication (ENOTSUP); a limit
// of the kernel (ENOSPC, EMFILE, ENFILE), of which a line of log says how to raise it.
//
// Thread: any, on each for itself.
ZQTICKER_EXPORT std::int32_t subscribeByPath(const QByteArray& path,
                                             DirectorySubscriptionCallback callback,
                                             void* reference, std::uint32_t flags,
                                             DirectorySubscription** handle);

// Ends a subscription: it is not called any more, not even for changes that have happened. On
// another thread than the subscription's, a call that has begun may still be running. Returns 0, or
// EINVAL for a handle that has ended or never was.
//
// Thread: any.
ZQTICKER_EXPORT std::int32_t unsubscribe(DirectorySubscription* handle);

} // namespace zq::platform
