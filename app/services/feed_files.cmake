# Feeds: what is read from them, when, and what is shown of them.
set(feed_SOURCES
    services/FeedSchedule.cpp
    services/FeedSchedule.h
    services/FeedSigns.cpp
    services/FeedSigns.h
    services/ShownItem.h
    services/feed_items.cpp
    services/feed_items.h
    services/picture_decoding.cpp
    services/picture_decoding.h
    services/response_hints.cpp
    services/response_hints.h)
