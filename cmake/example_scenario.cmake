# Reads the steps of the example scenario (examples/scenario.json) into a flat
# list KIND;NAME;KIND;NAME... in the scenario's order.
function(tov_scenario_steps scenario_file result)
  file(READ "${scenario_file}" scenario)
  string(JSON count LENGTH "${scenario}" steps)
  math(EXPR last "${count} - 1")
  set(pairs)
  foreach(i RANGE ${last})
    string(JSON kind GET "${scenario}" steps ${i} kind)
    string(JSON name GET "${scenario}" steps ${i} name)
    list(APPEND pairs "${kind}" "${name}")
  endforeach()
  set(${result} "${pairs}" PARENT_SCOPE)
endfunction()
