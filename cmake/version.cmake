# The one place that knows which release this is. Feeds project(VERSION), the banner and the packages.

set(QUORVANE_VERSION 1.0.0)
set(QUORVANE_BUILD_SERIAL 1)
set(QUORVANE_LEGAL_NOTICE "Copyright (C) 2026 the quorvane authors. MIT licence.")

# Never the clock of the build machine: two builds of one commit must give the same binary.
set(QUORVANE_DATE_STAMP 20261122)
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    string(TIMESTAMP QUORVANE_DATE_STAMP "%Y%m%d" UTC) # takes SOURCE_DATE_EPOCH for the time
endif()

set(QUORVANE_RELEASE "${QUORVANE_VERSION}.${QUORVANE_DATE_STAMP}.${QUORVANE_BUILD_SERIAL}")
