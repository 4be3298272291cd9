velloway_test(test_network_contract NetworkContract.cpp NetworkImplementations.cpp FakeNetworkWorld.cpp
    LinuxNetworkWorld.cpp ../hosts/RawPhone.cpp)
target_link_libraries(test_network_contract PRIVATE velloway_host_linux)
