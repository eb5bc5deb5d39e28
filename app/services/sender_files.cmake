# Services that send what they bring to a running ticker.
set(sender_SOURCES)
