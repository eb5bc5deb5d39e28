#include "zqticker/watching/file_watcher.h"

using namespace Qt::StringLiterals;

VXFileWatcherDelegate::~VXFileWatcherDelegate() = default;

VXFileWatcher::~VXFileWatcher() = default;

const QString VXFileWatcherRenameNotification = u"VXKQueueFileRenamedNotification"_s;
const QString VXFileWatcherWriteNotification = u"VXKQueueFileWrittenToNotification"_s;
const QString VXFileWatcherDeleteNotification = u"VXKQueueFileDeletedNotification"_s;
const QString VXFileWatcherAttributeChangeNotification =
    u"VXKQueueFileAttributesChangedNotification"_s;
const QString VXFileWatcherSizeIncreaseNotification = u"VXKQueueFileSizeIncreasedNotification"_s;
const QString VXFileWatcherLinkCountChangeNotification =
    u"VXKQueueFileLinkCountChangedNotification"_s;
const QString VXFileWatcherAccessRevocationNotification =
    u"VXKQueueFileAccessRevocationNotification"_s;
