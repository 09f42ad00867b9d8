# The project's own targets: warnings, precompiled headers, layers, test programs.

add_library(pelinor_options INTERFACE)
target_compile_options(pelinor_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wunused
  -Wconversion -Wno-sign-conversion -Wdouble-promotion -Wformat=2 -Wimplicit-fallthrough
  $<$<BOOL:${PELINOR_WARNINGS_AS_ERRORS}>:-Werror>
  $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
target_compile_definitions(pelinor_options INTERFACE
  QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_KEYWORDS
  QT_NO_FOREACH QT_STRICT_ITERATORS)
if(PELINOR_SANITIZERS)
  target_compile_options(pelinor_options INTERFACE -fsanitize=${PELINOR_SANITIZERS} -fno-omit-frame-pointer)
  target_link_options(pelinor_options INTERFACE -fsanitize=${PELINOR_SANITIZERS})
endif()
find_program(PELINOR_MOLD mold)
if(PELINOR_MOLD)
  target_link_options(pelinor_options INTERFACE -fuse-ld=mold)
endif()

# One small precompiled header for the layers without a display, one for those with widgets. Targets of one kind
# share it: a header per target would cost more than it saves.
function(_pelinor_precompiled_header kind)
  set(name pelinor_pch_${kind})
  if(TARGET ${name})
    return()
  endif()
  file(WRITE ${CMAKE_BINARY_DIR}/pch/${kind}.cpp "")
  add_library(${name} STATIC ${CMAKE_BINARY_DIR}/pch/${kind}.cpp)
  target_link_libraries(${name} PRIVATE pelinor_options Qt6::Core)
  set(headers <QByteArray> <QDateTime> <QHash> <QList> <QString> <QStringView> <QUrl>
    <functional> <memory> <optional> <utility> <variant> <vector>)
  if(kind STREQUAL widgets)
    target_link_libraries(${name} PRIVATE Qt6::Widgets)
    list(APPEND headers <QPainter> <QWidget>)
  endif()
  target_precompile_headers(${name} PRIVATE ${headers})
endfunction()

function(_pelinor_use_precompiled_header target kind)
  if(PELINOR_PRECOMPILED_HEADERS)
    _pelinor_precompiled_header(${kind})
    target_precompile_headers(${target} REUSE_FROM pelinor_pch_${kind})
  endif()
endfunction()

# pelinor_layer(<name> [WIDGETS] SOURCES … HEADERS … [LINKS …] [PRIVATE_LINKS …])
# One static library per folder: target pelinor_<name>, alias Pelinor::<name>. LINKS name only layers that stand
# below this one and libraries whose types appear in its headers.
function(pelinor_layer name)
  cmake_parse_arguments(LAYER "WIDGETS" "" "SOURCES;HEADERS;LINKS;PRIVATE_LINKS" ${ARGN})
  set(target pelinor_${name})
  add_library(${target} STATIC ${LAYER_SOURCES})
  add_library(Pelinor::${name} ALIAS ${target})
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${CMAKE_SOURCE_DIR}/src FILES ${LAYER_HEADERS})
  target_link_libraries(${target} PUBLIC Qt6::Core ${LAYER_LINKS} PRIVATE pelinor_options ${LAYER_PRIVATE_LINKS})
  if(LAYER_WIDGETS)
    target_link_libraries(${target} PUBLIC Qt6::Widgets)
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
    _pelinor_use_precompiled_header(${target} widgets)
  else()
    _pelinor_use_precompiled_header(${target} core)
  endif()
endfunction()

# pelinor_program(<target> [WIDGETS] SOURCES … LINKS …): an executable with the project's options.
function(pelinor_program target)
  cmake_parse_arguments(PROGRAM "WIDGETS" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${target} ${PROGRAM_SOURCES})
  target_link_libraries(${target} PRIVATE ${PROGRAM_LINKS} pelinor_options)
  if(PROGRAM_WIDGETS)
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
    _pelinor_use_precompiled_header(${target} widgets)
  endif()
endfunction()

# pelinor_test(<name> [WIDGETS] [WRAPPER …] SOURCES … LINKS …)
# One test program per layer: target pelinor_<name>_tests, linking that layer alone so that an upward call cannot
# link. WRAPPER is a command line put before the program (a private session bus, a virtual display).
function(pelinor_test name)
  cmake_parse_arguments(TEST "WIDGETS" "" "SOURCES;LINKS;WRAPPER" ${ARGN})
  set(target pelinor_${name}_tests)
  if(TEST_WIDGETS)
    pelinor_program(${target} WIDGETS SOURCES ${TEST_SOURCES} LINKS ${TEST_LINKS} pelinor_test_support GTest::gmock Qt6::Test)
  else()
    pelinor_program(${target} SOURCES ${TEST_SOURCES} LINKS ${TEST_LINKS} pelinor_test_support GTest::gmock)
  endif()
  add_test(NAME ${name} COMMAND ${TEST_WRAPPER} $<TARGET_FILE:${target}>)
  # A test that has run into an endless loop says so soon; sanitizers make all of them slow.
  if(PELINOR_SANITIZERS)
    set_tests_properties(${name} PROPERTIES TIMEOUT 600)
  else()
    set_tests_properties(${name} PROPERTIES TIMEOUT 240)
  endif()
  if(TEST_WIDGETS)
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
  endif()
  pelinor_suppress_findings(${name})
endfunction()

# pelinor_suppress_findings(<test>): what sanitizers find in libraries is not told again by the test.
function(pelinor_suppress_findings test)
  if(PELINOR_SANITIZERS MATCHES address)
    set_property(TEST ${test} APPEND PROPERTY ENVIRONMENT
      "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/leak-sanitizer.supp:print_suppressions=0")
  endif()
  if(PELINOR_SANITIZERS MATCHES thread)
    set_property(TEST ${test} APPEND PROPERTY ENVIRONMENT
      "TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/thread-sanitizer.supp")
  endif()
endfunction()
