# The JSON reader uses the first stage of simdjson, which is no part of its stable interface: each major release may
# change it. This finds a release that the reader is known to work with, or says what to do.
set(KT_SIMDJSON_FIRST 3.0)
set(KT_SIMDJSON_BEYOND 4.0)
find_package(simdjson CONFIG QUIET)
if(NOT simdjson_FOUND)
    message(FATAL_ERROR "simdjson is missing. Install it (Debian: scripts/install-deps --build, or libsimdjson-dev), or "
        "name its folder with -Dsimdjson_DIR=FOLDER.")
endif()
if(simdjson_VERSION VERSION_LESS KT_SIMDJSON_FIRST OR NOT simdjson_VERSION VERSION_LESS KT_SIMDJSON_BEYOND)
    message(FATAL_ERROR "simdjson ${simdjson_VERSION} was found in ${simdjson_DIR}; the JSON reader works with "
        "${KT_SIMDJSON_FIRST} and later, before ${KT_SIMDJSON_BEYOND}. Name the folder of such a release with "
        "-Dsimdjson_DIR=FOLDER.")
endif()
