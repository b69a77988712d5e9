# The embedded engine's files, relative to src/foundation.
set(QUIMO_EMBEDDED_SOURCES embedded/conexion_embebida.cpp)
set(QUIMO_EMBEDDED_TESTS)
