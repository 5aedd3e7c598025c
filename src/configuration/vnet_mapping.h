// Virtual network mappings: for a failover to a virtual machine, which network of the replica
// each adapter of the machine joins, and with what addresses. The scenario keeps them as
// `VirtualNetworkMapping` objects (id 4450) in a list item; scenario_conf_c::
// get_hyper_v_vm_network_mapping_list reads such a list into these plain records, for the
// feature rules and the engine's failover code.
#pragma once

#include "utl/container.h"
#include "utl/utl_stream.h"

#include <cstdint>

// The id of a `VirtualNetworkMapping` object.
inline constexpr std::uint32_t VM_NETWORK_MAPPING_ID = 4450;

// One mapping. Made empty, filled on the stack, then copied into the record that a list owns.
struct vm_network_mapping_s {
    vm_network_mapping_s() = default;
    vm_network_mapping_s(const vm_network_mapping_s& other) = default;
    vm_network_mapping_s& operator=(const vm_network_mapping_s&) = delete;

    utl_stream_c VirtualMachineUUID;
    utl_stream_c MasterVirtualNetworkName;
    utl_stream_c MasterVirtualNetworkUUID;
    // Carried with the record for the engine's failover code; no label of the scenario fills
    // it and nothing in this library reads it.
    utl_stream_c Reserved;
    utl_stream_c ReplicaVirtualNetworkName;
    utl_stream_c ReplicaVirtualNetworkUUID;
    utl_stream_c MacAddress;
    bool ApplySourceAdapterSetting = false;
    bool UseDHCP = false;
    utl_stream_c WinsPrimary;
    utl_stream_c WinsSecondary;
    string_array_c IPs;
    string_array_c Subnets;
    string_array_c Gateways;
    string_array_c DNS;
};
