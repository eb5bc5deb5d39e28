# Services as programs of their own.
set(app_services_SOURCES)
