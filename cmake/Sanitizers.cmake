# The sanitizer build: every finding ends the program, so that a test that meets one fails.
if(BRIX_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -D_GLIBCXX_ASSERTIONS)
    add_link_options(-fsanitize=address,undefined)
endif()
