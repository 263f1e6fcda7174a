# What a HIP header says of the names of its functions.

# A header of HIP 6 or later renames this function by macro; the library then calls it by that name.
function(kestrelcore_hip_properties_function result header)
  file(STRINGS "${header}" line REGEX "^#define hipGetDeviceProperties ")
  if(line)
    string(REGEX REPLACE "^#define hipGetDeviceProperties +" "" name "${line}")
  else()
    set(name hipGetDeviceProperties)
  endif()
  set(${result} "${name}" PARENT_SCOPE)
endfunction()
