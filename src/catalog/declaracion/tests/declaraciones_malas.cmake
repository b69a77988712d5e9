# Compiles FUENTE with ORDEN, which must fail with exactly the refusals that the file's lines name
# behind an arrow.
file(STRINGS ${FUENTE} lineas REGEX "// -> ")
set(esperadas "")
foreach(linea IN LISTS lineas)
  string(REGEX REPLACE ".*// -> ([A-Za-z]+).*" "\\1" nombre "${linea}")
  list(APPEND esperadas ${nombre})
endforeach()
set(ENV{LC_ALL} C.UTF-8)
execute_process(COMMAND ${ORDEN} -fsyntax-only -fmax-errors=0 ${FUENTE}
  RESULT_VARIABLE resultado ERROR_VARIABLE dicho OUTPUT_QUIET)
if(resultado EQUAL 0)
  message(FATAL_ERROR "wrong declarations compile")
endif()
# What the compiler calls a function that is not constexpr, or a constructor that is private.
string(REGEX MATCHALL
  "error: [^\n]*(declaracion_mala::|EditorRevisado::EditorRevisado)[^\n]*" halladas "${dicho}")
list(TRANSFORM halladas REPLACE ".*(declaracion_mala|EditorRevisado)::([A-Za-z]+).*" "\\2")
list(SORT esperadas)
list(SORT halladas)
if(NOT halladas STREQUAL esperadas)
  message(NOTICE "${dicho}")
  message(FATAL_ERROR "refused: ${halladas}\nexpected: ${esperadas}")
endif()
