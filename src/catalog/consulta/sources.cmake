# The search and filter dialogs' logic, relative to src/catalog.
set(QUIMO_CONSULTA_SOURCES
  consulta/buscador.cpp consulta/condicion.cpp consulta/consulta.cpp consulta/exportar.cpp
  consulta/tabla_consulta.cpp consulta/valores_escritos.cpp)
set(QUIMO_CONSULTA_TESTS
  consulta/tests/buscador_test.cpp consulta/tests/condicion_test.cpp
  consulta/tests/consulta_test.cpp consulta/tests/exportar_test.cpp)
