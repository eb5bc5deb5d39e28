set(system_PUBLIC_HEADERS URLConnection.h URLRequest.h URLResponse.h url_errors.h)
set(system_PRIVATE_HEADERS LoadingThread_p.h URLLoading_p.h URLSource_p.h data_source_p.h
                           http_fields_p.h redirects_p.h)
set(system_SOURCES
    LoadingThread.cpp
    URLConnection.cpp
    URLLoading.cpp
    URLRequest.cpp
    URLResponse.cpp
    URLSource.cpp
    data_source.cpp
    http_fields.cpp
    redirects.cpp
    url_errors.cpp)
