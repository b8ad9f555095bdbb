# The settings of a platform's vendor: the hosts of the key and privilege URIs and the address of the guide page.
set(ORVEL_NAMESPACE_HOST "orvel.example" CACHE STRING "Host of the platform namespace URIs")
set(ORVEL_DEVELOPER_HOST "developer.orvel.example" CACHE STRING "Host of the vendor's developer URIs")
set(ORVEL_TV_HOST "tv.orvel.example" CACHE STRING "Host of the vendor's TV URIs")
set(ORVEL_GUIDE_URL "http://developer.orvel.example/guides/dotnet/exclude-runtime-dlls"
    CACHE STRING "Address of the guide page on excluding runtime DLLs from a package")

add_library(build_settings INTERFACE)
target_compile_definitions(build_settings INTERFACE
  ORVEL_NAMESPACE_HOST="${ORVEL_NAMESPACE_HOST}"
  ORVEL_DEVELOPER_HOST="${ORVEL_DEVELOPER_HOST}"
  ORVEL_TV_HOST="${ORVEL_TV_HOST}"
  ORVEL_GUIDE_URL="${ORVEL_GUIDE_URL}")
