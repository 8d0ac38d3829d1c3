# VORN_INPUT_FAST_LINKER: links with mold or lld if installed, which takes a fraction of the time.
# Not for what ships: products use the default linker.

include(CheckLinkerFlag)

if(VORN_INPUT_FAST_LINKER)
    foreach(linker mold lld)
        check_linker_flag(CXX "-fuse-ld=${linker}" VORN_LINKS_WITH_${linker})
        if(VORN_LINKS_WITH_${linker})
            add_link_options("-fuse-ld=${linker}")
            if(linker STREQUAL "mold")
                # Thread-locals that end up at the end of the code's last page make mold 1.10 protect that
                # page, which is not mapped there, so that the program does not even start. Pages of
                # their own for code keep them apart.
                add_link_options(LINKER:-z,separate-code)
            endif()
            break()
        endif()
    endforeach()
endif()
