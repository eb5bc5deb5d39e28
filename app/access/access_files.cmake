# The ticker for everyone: less motion, assistive technology, contrast.
set(access_SOURCES)
