# VORN_SIM_OBSTACLE: why the simulator cannot work in what is built here; empty if it can. It puts itself
# before functions of the C library, by name.

include(CheckCXXSourceCompiles)

# statx(), which Qt calls, is that old.
set(VORN_SIM_GLIBC_MINOR 28)
check_cxx_source_compiles("
#include <features.h>
#if !defined __GLIBC__
#error another C library
#endif
int main() {}" VORN_HAVE_GLIBC)
check_cxx_source_compiles("
#include <features.h>
#if !defined __GLIBC__ || !__GLIBC_PREREQ(2, ${VORN_SIM_GLIBC_MINOR})
#error too old
#endif
int main() {}" VORN_GLIBC_IS_NEW_ENOUGH)

set(VORN_SIM_OBSTACLE "")
if(NOT VORN_HAVE_GLIBC)
    set(VORN_SIM_OBSTACLE "this C library is not glibc")
elseif(NOT VORN_GLIBC_IS_NEW_ENOUGH)
    set(VORN_SIM_OBSTACLE "this glibc is older than 2.${VORN_SIM_GLIBC_MINOR}")
elseif("${CMAKE_CXX_FLAGS} ${CMAKE_EXE_LINKER_FLAGS} " MATCHES "(^| )(-static|-static-pie|--static) ")
    set(VORN_SIM_OBSTACLE "programs are linked statically")
endif()
