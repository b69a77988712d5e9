# The ODBC engine's files, relative to src/foundation.
set(QUIMO_ODBC_SOURCES
  odbc/diagnostico.cpp odbc/controlador.cpp odbc/lectura.cpp odbc/valores_ligados.cpp
  odbc/enlace.cpp odbc/catalogo_servidor.cpp odbc/conexion_odbc.cpp)
