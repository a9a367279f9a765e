# The sanitizer build: every finding ends the program, so that a test that meets one fails. BRIX_SANITIZED tells sources and tests,
# whatever the compiler. GCC's own checks get in the way of its analysis of what is initialised, so that warning is left to the other
# builds.
if(BRIX_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -D_GLIBCXX_ASSERTIONS
        -DBRIX_SANITIZED $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    add_link_options(-fsanitize=address,undefined)
endif()

# The build that looks for data races: what BRIX_SANITIZED leaves out, this does, too.
if(BRIX_SANITIZE_THREADS)
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer -DBRIX_SANITIZED)
    add_link_options(-fsanitize=thread)
endif()
