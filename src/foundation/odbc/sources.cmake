# The ODBC engine's files, relative to src/foundation.
set(QUIMO_ODBC_SOURCES
  odbc/diagnostico.cpp odbc/controlador.cpp odbc/lectura.cpp odbc/valores_ligados.cpp
  odbc/enlace.cpp odbc/catalogo_servidor.cpp odbc/conexion_odbc.cpp)
# A server that speaks SQL Server's protocol, and what else several tests stand on.
set(QUIMO_ODBC_APOYO
  odbc/tests/apoyo_odbc.cpp odbc/tests/tds_codigo.cpp odbc/tests/servidor_tds.cpp)
set(QUIMO_ODBC_TESTS
  odbc/tests/freetds_test.cpp odbc/tests/sesion_odbc_test.cpp odbc/tests/conexion_odbc_test.cpp odbc/tests/ado_odbc_test.cpp odbc/tests/otros_controladores_test.cpp odbc/tests/servidor_pg.cpp
  odbc/tests/varias_test.cpp)
