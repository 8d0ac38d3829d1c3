# VORN_INPUT_FAST_LINKER: links with mold or lld if installed, which takes a fraction of the time.
# Not for what ships: products use the default linker.

include(CheckLinkerFlag)

if(VORN_INPUT_FAST_LINKER)
    foreach(linker mold lld)
        check_linker_flag(CXX "-fuse-ld=${linker}" VORN_LINKS_WITH_${linker})
        if(VORN_LINKS_WITH_${linker})
            add_link_options("-fuse-ld=${linker}")
            break()
        endif()
    endforeach()
endif()
