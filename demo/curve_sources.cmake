# What reads a curve and finds its end point, for the program, the tests and the fuzz target.
set(titration_curve_sources
  ${PROJECT_SOURCE_DIR}/demo/curve/columns.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/csv_table.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/field_rows.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/table_doubts.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/table_refusals.cpp
  ${PROJECT_SOURCE_DIR}/demo/support/number.cpp
  ${PROJECT_SOURCE_DIR}/demo/support/text_file.cpp
)
