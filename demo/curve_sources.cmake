# What reads a curve and finds its end point, for the program, the tests and the fuzz target.
set(titration_curve_sources
  ${PROJECT_SOURCE_DIR}/demo/curve/columns.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/csv_table.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/cubic_fit.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/end_point.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/field_rows.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/noise.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/points.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/sharp_step.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/step_doubts.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/step_search.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/stray_readings.cpp
  ${PROJECT_SOURCE_DIR}/demo/curve/table_refusals.cpp
  ${PROJECT_SOURCE_DIR}/demo/support/number.cpp
  ${PROJECT_SOURCE_DIR}/demo/support/printable.cpp
  ${PROJECT_SOURCE_DIR}/demo/support/text_file.cpp
)
