# The search and filter dialogs' logic, relative to src/catalog.
set(QUIMO_CONSULTA_SOURCES)
set(QUIMO_CONSULTA_TESTS)
