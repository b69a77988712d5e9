# The embedded engine's files, relative to src/foundation.
set(QUIMO_EMBEDDED_SOURCES
  embedded/base_sqlite.cpp embedded/funciones_sqlite.cpp embedded/vistas_sistema.cpp
  embedded/catalogo_embebido.cpp embedded/sesion.cpp embedded/valores_qt.cpp
  embedded/errores_restriccion.cpp embedded/definiciones.cpp embedded/definiciones_motor.cpp
  embedded/definiciones_cambio.cpp embedded/interprete.cpp embedded/interprete_planes.cpp
  embedded/interprete_rutinas.cpp embedded/candados.cpp
  embedded/interprete_candados.cpp embedded/interprete_revision.cpp embedded/revision_motor.cpp embedded/escritura_por_partes.cpp embedded/conexion_embebida.cpp)
set(QUIMO_EMBEDDED_TESTS
  embedded/tests/base_prueba.cpp embedded/tests/tsql_golden_test.cpp
  embedded/tests/guiones_test.cpp embedded/tests/conexion_test.cpp
  embedded/tests/expresiones_test.cpp embedded/tests/disco_que_falla.cpp
  embedded/tests/reescrituras_test.cpp
  embedded/tests/fallos_disco_test.cpp embedded/tests/revision_test.cpp)
set_source_files_properties(${QUIMO_EMBEDDED_TESTS} PROPERTIES
  COMPILE_DEFINITIONS "QUIMO_RAIZ=\"${PROJECT_SOURCE_DIR}\"")
