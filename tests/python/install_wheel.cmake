# Installs the wheel into a new virtual environment that also sees the system's packages: pytest.
#
#   cmake -DPYTHON=... -DDIST=... -DENVIRONMENT=... -P install_wheel.cmake

cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/../run_command.cmake")

file(REMOVE_RECURSE "${ENVIRONMENT}")
run("${PYTHON}" -m venv --system-site-packages "${ENVIRONMENT}")
file(GLOB wheel "${DIST}/*.whl")
run("${ENVIRONMENT}/bin/python" -m pip install --no-index --quiet "${wheel}")
