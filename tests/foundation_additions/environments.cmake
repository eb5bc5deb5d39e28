# The whole program once more in each of several locales, in each of several time zones. The locales are built into
# the build folder, whatever the machine has. Left out are tests of very long strings, which take
# long and know no locale.
set(environment_locales C de_DE.UTF-8 tr_TR.UTF-8)
set(environment_zones UTC America/New_York Europe/Berlin Asia/Kathmandu Pacific/Apia)
set(environment_program zqticker-tests-foundation_additions
                        "--gtest_filter=-*LinearTime*:*LongStrings*:*BeyondItsRange*"
                        --gtest_brief=1)
set(locale_folder "${PROJECT_BINARY_DIR}/locales")

foreach(locale IN LISTS environment_locales)
  string(REGEX REPLACE "\\..*" "" locale_name "${locale}")
  if(NOT locale STREQUAL C)
    # localedef makes the folder of the locale, not the one above, and fails where it warns.
    add_test(
      NAME FoundationAdditions.BuildLocale_${locale_name}
      COMMAND
        sh -c
        "mkdir -p '${locale_folder}' && localedef -c -i '${locale_name}' -f UTF-8 '${locale_folder}/${locale}'; test -f '${locale_folder}/${locale}/LC_NUMERIC'"
    )
    set_tests_properties(
      FoundationAdditions.BuildLocale_${locale_name}
      PROPERTIES LABELS foundation_additions TIMEOUT 120 FIXTURES_SETUP locale_${locale_name})
  endif()
  foreach(zone IN LISTS environment_zones)
    string(REPLACE / _ zone_name "${zone}")
    set(test FoundationAdditions.PassIn_${locale_name}_${zone_name})
    add_test(NAME ${test} COMMAND ${environment_program})
    set_tests_properties(
      ${test}
      PROPERTIES
        LABELS foundation_additions
        TIMEOUT 600
        ENVIRONMENT
        "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/leak_suppressions.txt:print_suppressions=0;ZQTICKER_TEST_LOCALE=${locale};ZQTICKER_TEST_TIME_ZONE=${zone};LOCPATH=${locale_folder}"
    )
    if(NOT locale STREQUAL C)
      set_tests_properties(${test} PROPERTIES FIXTURES_REQUIRED locale_${locale_name})
    endif()
  endforeach()
endforeach()
