# Feeds: what is read from them.
set(feed_SOURCES services/Feed.h services/FeedParser.cpp services/FeedParser.h)
