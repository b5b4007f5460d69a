# Installs the Python package into a fresh prefix and uses it from there,
# as a user would after tools/install-python: with nothing of the source or
# build tree on Python's path.  Then runs the examples against it.
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")
function(run)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY "${WORK_DIR}" RESULT_VARIABLE status OUTPUT_VARIABLE out
                  ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
  endif()
  message(STATUS "${out}")
endfunction()
run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --component python --prefix "${prefix}")
set(site "${prefix}/${SITE}")
run(${CMAKE_COMMAND} -E env --unset=PYTHONPATH ${PYTHON} -c "
import sys
sys.path.insert(0, '${site}')
import numpy as np, orvvm
assert orvvm.__file__.startswith('${site}/orvvm/'), orvvm.__file__
y = orvvm.exp(np.linspace(0, 1, 5))
assert np.allclose(y, np.exp(np.linspace(0, 1, 5)), rtol=1e-15, atol=0), y
print('installed orvvm', orvvm.library_version, y)
")
foreach(example exp_vs_numpy erfinv_error)
  run(${CMAKE_COMMAND} -E env "PYTHONPATH=${site}" ${PYTHON} -c "
import orvvm, runpy, sys
if '${example}' == 'erfinv_error' and not hasattr(orvvm, 'erfinv'):
    print('no erfinv in this build: the plot is not made')
    sys.exit(0)
sys.argv = ['${example}', '${WORK_DIR}/${example}.png']
runpy.run_path('${SOURCE_DIR}/examples/python/${example}.py', run_name='__main__')
")
endforeach()
