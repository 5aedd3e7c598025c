// The code tables of the XMC schema: the 16 enumerations, the objects, and the addressable
// settings of scenarios, hosts and groups, each a small integer for the configuration's
// interface. They repeat facts of the built-in template on purpose: the template is proven
// against them at load. All of it is constant data built by the compiler, with one exception,
// group_host_data_table, which a start-up step completes from host_data_table.
#pragma once

#include "configuration/xmc_grammar.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>

class xml_item_c;

// One item of an enumeration. The entry after the last item is the end entry: its position is
// the item count and its name is empty; the entries after it are all null.
struct xmc_enum_item_s {
    std::uint32_t position;
    const char* name;
    const char* text_id; // id of a display text, or empty
};

// One enumeration, and the lookups over all of them. A position equal to `count` means
// "not set": 13 for an application, 4 for a product, 8 for a configuration mode.
class xmc_enum_c {
  public:
    static constexpr std::uint32_t enum_count = 16;
    static constexpr std::uint32_t item_entries = 17;
    static constexpr std::uint32_t not_found = 0xFFFFFFFFu;

    std::uint32_t index;
    const char* name;
    std::uint64_t count;
    xmc_enum_item_s items[item_entries];

    // The enumeration's index by exact compare; 16 for a null or unknown name.
    static std::uint32_t find_enum(const char* enum_name_text);
    // The name; empty for an index of 16 or above.
    static const char* enum_name(std::uint32_t enum_index);
    // The item's name; empty for a position past the entries, where the entry is null, or for
    // an enumeration that does not exist.
    static const char* item_name(std::uint32_t enum_index, std::uint32_t position);
    // The position by exact compare over the items; all ones for an enumeration index of 16 or
    // above, a null name or no match.
    static std::uint32_t find_item(std::uint32_t enum_index, const char* item);
    // A `type` attribute as its two numbers: an enumeration name gives 0 (`Enum`) and the
    // enumeration's index, a type name its position and 16, anything else 12 and 16.
    static std::uint32_t find_type(const char* type_name, std::uint32_t& enum_index);
    static std::uint32_t find_type(std::string_view type_name, std::uint32_t& enum_index);
    // Whether `text` is a value of the type at `type_position` (over enumeration `enum_index`
    // for `Enum`); `item` is the item the value belongs to, or null.
    static bool data_fits_type(const char* text, std::uint32_t type_position,
                               std::uint32_t enum_index, const xml_item_c* item);
};

namespace xmc_enums_n {

// An enumeration record from its name and items, as the compiler builds the table. More than
// 16 items cannot be built: the end entry would not fit.
struct item_def_s {
    const char* name;
    const char* text_id = "";
};
constexpr xmc_enum_c make_enum(std::uint32_t index, const char* name,
                               std::initializer_list<item_def_s> items) {
    xmc_enum_c record{index, name, items.size(), {}};
    std::uint32_t position = 0;
    for (const item_def_s& item : items) {
        record.items[position] = {position, item.name, item.text_id};
        ++position;
    }
    record.items[position] = {position, "", ""};
    for (std::uint32_t rest = position + 1; rest < xmc_enum_c::item_entries; ++rest)
        record.items[rest] = {0, nullptr, nullptr};
    return record;
}

// The enumerations by index.
enum enum_index_t : std::uint32_t {
    enum_type = 0,
    enum_product = 1,
    enum_application = 2,
    enum_config_mode = 3,
    enum_replication_mode = 4,
    enum_bandwidth = 5,
    enum_host_task = 6,
    enum_schedule = 7,
    enum_synchronization_type = 8,
    enum_group_type = 9,
    enum_virtual_hard_disk_type = 10,
    enum_virtual_platform_type = 11,
    enum_number_of_sockets_type = 12,
    enum_cloud_provider_type = 13,
    enum_cloud_instance_type = 14,
    enum_secure_communication_level = 15,
    enum_none = 16,
};

inline constexpr xmc_enum_c enum_table[xmc_enum_c::enum_count] = {
    make_enum(0, "Type",
              {{"Enum"},
               {"Number"},
               {"Bool"},
               {"String"},
               {"Text"},
               {"FullPath"},
               {"DefFullPath"},
               {"IPAddr"},
               {"IPAdrMask"},
               {"Date"},
               {"MultiEntry"},
               {"Any"}}),
    make_enum(1, "Product", {{"Dr"}, {"Ha"}, {"Cd"}, {"Rw"}}),
    make_enum(2, "Application",
              {{"FileServer"},
               {"Exchange"},
               {"Oracle"},
               {"DB2"},
               {"SQL"},
               {"IIS"},
               {"ControlService"},
               {"HyperV"},
               {"SharePoint"},
               {"vCenter"},
               {"CRM"},
               {"FullSystem"},
               {"CustomApp"}}),
    make_enum(3, "ConfigMode",
              {{"Template"},
               {"Regular"},
               {"Synchron"},
               {"Verific"},
               {"Assessment"},
               {"Recovery"},
               {"Backward"},
               {"Rewind"}}),
    make_enum(4, "ReplicationMode", {{"Online"}, {"Scheduling"}, {"OnFileClose"}, {"Scheduled"}}),
    make_enum(5, "Bandwidth",
              {{"56.0"},
               {"64.0"},
               {"128.0"},
               {"192.0"},
               {"256.0"},
               {"512.0"},
               {"1024.0"},
               {"1544.0"},
               {"2048.0"},
               {"4096.0"},
               {"10240.0"},
               {"20480.0"},
               {"30720.0"},
               {"40960.0"},
               {"102400.0"},
               {"Unlimited"}}),
    make_enum(6, "HostTask", {{"None"}, {"Manager"}, {"Master"}, {"Replica"}}),
    make_enum(7, "Schedule", {{"ByUserRequest"}, {"WeeklyActivity"}}),
    make_enum(8, "SynchronizationType",
              {{"FileSynchronization"}, {"BlockSynchronization"}, {"VolumeSynchronization"}}),
    make_enum(9, "GroupType",
              {{"default_scenarios"},
               {"default_templates"},
               {"regular"},
               {"distributed"},
               {"customized"}}),
    make_enum(10, "VirtualHardDiskType", {{"DynamicallyExpanding"}, {"FixSize"}}),
    make_enum(11, "VirtualPlatformType",
              {{"HyperV", "IR00584"},
               {"Esx", "IR00585"},
               {"vSphere", "IR00585"},
               {"Xen", "IR00586"},
               {"EC2", "IR00587"}}),
    make_enum(12, "NumberOfSocketsType", {{"Default"}, {"1"}, {"5"}, {"10"}}),
    make_enum(13, "CloudProviderType", {{"AmazonEC2"}}),
    make_enum(14, "CloudInstanceType",
              {{"ec2_t1_micro"},
               {"ec2_m1_small"},
               {"ec2_m1_large"},
               {"ec2_m1_xlarge"},
               {"ec2_m2_xlarge"},
               {"ec2_m2_2xlarge"},
               {"ec2_m2_4xlarge"},
               {"ec2_c1_medium"},
               {"ec2_c1_xlarge"},
               {"ec2_m1_medium"},
               {"ec2_cc1_4xlarge"},
               {"ec2_cc2_8xlarge"},
               {"ec2_cg1_4xlarge"},
               {"ec2_hi1_4xlarge"}}),
    make_enum(15, "SecureCommunicationLevel", {{"0"}, {"1"}, {"2"}, {"3"}}),
};

// ---- objects ----------------------------------------------------------------------------------
struct object_tag_s {
    std::uint32_t index;
    std::uint32_t papa; // row of the parent object; rows 0 and 55 are their own
    const char* name;
    std::uint32_t id; // 0 where the table does not fix the id
};

inline constexpr std::uint32_t object_tag_count = 69;
// The row of an object that is not in the table.
inline constexpr std::uint32_t object_not_found = object_tag_count;

inline constexpr object_tag_s object_tag_table[object_tag_count] = {
    {0, 0, "Scenario", 0},
    {1, 0, "Switchover", 4500},
    {2, 1, "VirtualNetworkMapping", 4450},
    {3, 1, "TraficRedirection", 4600},
    {4, 3, "RedirectDNS", 4700},
    {5, 3, "SwitchCompName", 4770},
    {6, 3, "ActiveToStandBy", 300},
    {7, 3, "StandByToActive", 300},
    {8, 3, "IdentifyTraffic", 300},
    {9, 1, "OnActive", 300},
    {10, 1, "OnStandBy", 300},
    {11, 1, "MonitorService", 5500},
    {12, 1, "MonitorBackupVM", 8080},
    {13, 1, "StopDB", 300},
    {14, 1, "StartDB", 300},
    {15, 1, "OnSuccessScript", 300},
    {16, 1, "OnFailureScript", 300},
    {17, 0, "ReplNode", 0},
    {18, 17, "CommonHostProps", 100},
    {19, 17, "SpecificReplicaProps", 150},
    {20, 18, "SyncScriptBefore", 300},
    {21, 18, "SyncScriptAfter", 300},
    {22, 0, "SchedulerReplMode", 400},
    {23, 18, "ListRegistryPaths_32", 250},
    {24, 18, "ListRegistryPaths_64", 250},
    {25, 18, "RootDir", 0},
    {26, 25, "FileRegExpr", 0},
    {27, 25, "DirRegExpr", 0},
    {28, 25, "DirPath", 0},
    {29, 25, "MatchAllKidsVolume", 0},
    {30, 0, "External", 0},
    {31, 18, "IOThrottler", 350},
    {32, 18, "Report", 3500},
    {33, 32, "ReportNotifyEmail", 3620},
    {34, 32, "ReportScript", 300},
    {35, 18, "EventNotification", 1120},
    {36, 35, "NotifyByEmail", 3620},
    {37, 35, "EventNotifScript", 300},
    {38, 18, "TriggerFile", 4200},
    {39, 38, "TrigFileScript", 300},
    {40, 19, "BandwidthThrottler", 350},
    {41, 19, "ReplicaScheduledTask", 4300},
    {42, 41, "Suspend", 4400},
    {43, 42, "SuspendScheduler", 400},
    {44, 42, "SuspendScript", 300},
    {45, 42, "SuspendOfflineScript", 300},
    {46, 41, "VettedFailbackObj", 4310},
    {47, 46, "SchedulerVF", 400},
    {48, 46, "VFStartDBScript", 300},
    {49, 46, "VFTestDBScript", 300},
    {50, 46, "OnlineScript", 300},
    {51, 46, "VFStopDBScript", 300},
    {52, 46, "OfflineScript", 300},
    {53, 0, "SchedulerSysState", 400},
    {54, 18, "SchedulerDBBM", 400},
    {55, 55, "Group", 8000},
    {56, 55, "ScenarioInfo", 8010},
    {57, 56, "HostProps", 8020},
    {58, 55, "ScenarioDependencySet", 8070},
    {59, 55, "GroupFailover", 8030},
    {60, 59, "Failover_together", 8040},
    {61, 60, "ScenarioFailoverInfo", 8050},
    {62, 59, "ScenarioRedundancySet", 8060},
    {63, 55, "GroupEventNotification", 8200},
    {64, 63, "GroupNotifyByEmail", 8210},
    {65, 63, "GroupEventNotifScript", 8220},
    {66, 55, "GroupReport", 8100},
    {67, 66, "GroupReportNotifyEmail", 8110},
    {68, 66, "GroupReportScript", 8120},
};

// The row of the object of that label by exact compare; 69 for a null, empty or unknown name.
constexpr std::uint32_t row_of(const char* name) {
    if (!name || !*name) return object_not_found;
    for (const object_tag_s& row : object_tag_table)
        if (std::string_view(row.name) == name) return row.index;
    return object_not_found;
}

// ---- settings ---------------------------------------------------------------------------------
// A setting of a scenario or a group: the owning object's row and the `data` label (or `status`,
// the object's attribute). A fixed setting is refused to a caller that does not force it.
struct scenario_data_s {
    std::uint32_t index;
    std::uint32_t object;
    const char* label;
    std::uint8_t fixed;
};

// A setting of one host; `manager` marks those that exist in the manager's own data as well.
struct host_data_s {
    std::uint32_t index;
    std::uint32_t object;
    const char* label;
    std::uint8_t manager;
};

// A MultiEntry list through which group members are reached.
struct group_list_s {
    std::uint32_t index;
    std::uint32_t object;
    const char* label;
};

// A host setting inside a group: a copy of its host_data_table row, and a zero that the
// record has always carried.
struct group_host_data_s {
    std::uint32_t index;
    std::uint32_t object;
    const char* label;
    host_data_s host;
    std::uint64_t zero;
};

inline constexpr std::uint32_t scenario_data_count = 142;
inline constexpr scenario_data_s scenario_data_table[scenario_data_count] = {
    {0, row_of("Scenario"), "ScenarioID", 1},
    {1, row_of("Scenario"), "GroupID", 0},
    {2, row_of("Scenario"), "ConfigMode", 1},
    {3, row_of("Scenario"), "ScenarioName", 0},
    {4, row_of("Scenario"), "ScenarioComment", 0},
    {5, row_of("Scenario"), "AutoStartVMAfterRestore", 0},
    {6, row_of("Scenario"), "DescendantID", 1},
    {7, row_of("Scenario"), "IsForward", 1},
    {8, row_of("Scenario"), "IsCDPScenario", 1},
    {9, row_of("Scenario"), "CDPRunTimeout", 1},
    {10, row_of("Scenario"), "QuillonIntegrated", 1},
    {11, row_of("Scenario"), "QuillonName", 0},
    {12, row_of("Scenario"), "RegistrySynchronization", 0},
    {13, row_of("Scenario"), "Interval", 0},
    {14, row_of("Scenario"), "QuillonVexIntegrated", 1},
    {15, row_of("Scenario"), "QuillonVexName", 0},
    {16, row_of("Scenario"), "QuillonCntrlAppIntegrated", 1},
    {17, row_of("Scenario"), "QuillonCntrlAppName", 0},
    {18, row_of("Scenario"), "ListMonitorBackupVM", 0},
    {19, row_of("Scenario"), "VMInstanceUUID", 0},
    {20, row_of("Scenario"), "QuillonCntrlAppUser", 0},
    {21, row_of("Scenario"), "QuillonCntrlAppPass", 0},
    {22, row_of("Scenario"), "ParentRootDirChecked", 0},
    {23, row_of("Scenario"), "QuillonCntrlAppUserUUID", 0},
    {24, row_of("Scenario"), "RecoveryNodeID", 1},
    {25, row_of("Scenario"), "OriginalID", 1},
    {26, row_of("Scenario"), "Signature", 0},
    {27, row_of("Scenario"), "Version", 1},
    {28, row_of("Scenario"), "TemplateID", 1},
    {29, row_of("Switchover"), "status", 0},
    {30, row_of("Switchover"), "HostName", 0},
    {31, row_of("Switchover"), "PerformAutomatically", 0},
    {32, row_of("Switchover"), "RunReverse", 0},
    {33, row_of("Switchover"), "MasterFQName", 0},
    {34, row_of("Switchover"), "ReplicaFQName", 0},
    {35, row_of("Switchover"), "VirtualMachineFQName", 0},
    {36, row_of("TraficRedirection"), "status", 0},
    {37, row_of("TraficRedirection"), "MoveIP", 0},
    {38, row_of("TraficRedirection"), "IPMask", 0},
    {39, row_of("RedirectDNS"), "status", 0},
    {40, row_of("RedirectDNS"), "DNS_ServerIPs", 0},
    {41, row_of("RedirectDNS"), "DNS_TTL", 0},
    {42, row_of("RedirectDNS"), "AD_Integrated", 0},
    {43, row_of("RedirectDNS"), "DNS_Scavenging", 0},
    {44, row_of("RedirectDNS"), "DNS_KeyFilename", 0},
    {45, row_of("RedirectDNS"), "MasterIPinDNS", 0},
    {46, row_of("RedirectDNS"), "ReplicaIPinDNS", 0},
    {47, row_of("RedirectDNS"), "VirtualMachineIPOnMasterinDNS", 0},
    {48, row_of("RedirectDNS"), "VirtualMachineIPOnReplicainDNS", 0},
    {49, row_of("SwitchCompName"), "status", 0},
    {50, row_of("SwitchCompName"), "MasterCompName", 0},
    {51, row_of("SwitchCompName"), "ReplicaCompName", 0},
    {52, row_of("SwitchCompName"), "WithReboot", 0},
    {53, row_of("SwitchCompName"), "UseAlias", 0},
    {54, row_of("TraficRedirection"), "SwitchAlias", 0},
    {55, row_of("TraficRedirection"), "AliasInfo", 0},
    {56, row_of("TraficRedirection"), "AliasName", 0},
    {57, row_of("ActiveToStandBy"), "status", 0},
    {58, row_of("ActiveToStandBy"), "Path", 0},
    {59, row_of("ActiveToStandBy"), "Args", 0},
    {60, row_of("ActiveToStandBy"), "DefaultArgs", 0},
    {61, row_of("StandByToActive"), "status", 0},
    {62, row_of("StandByToActive"), "Path", 0},
    {63, row_of("StandByToActive"), "Args", 0},
    {64, row_of("StandByToActive"), "DefaultArgs", 0},
    {65, row_of("IdentifyTraffic"), "status", 0},
    {66, row_of("IdentifyTraffic"), "Path", 0},
    {67, row_of("IdentifyTraffic"), "Args", 0},
    {68, row_of("IdentifyTraffic"), "DefaultArgs", 0},
    {69, row_of("Switchover"), "IsAliveTimeout", 0},
    {70, row_of("Switchover"), "HeartbeatTimeout", 0},
    {71, row_of("Switchover"), "SendPing", 0},
    {72, row_of("Switchover"), "PingIP", 0},
    {73, row_of("Switchover"), "FromMasterPingIP", 0},
    {74, row_of("Switchover"), "FromReplicaPingIP", 0},
    {75, row_of("Switchover"), "ConnectToDB", 0},
    {76, row_of("OnActive"), "status", 0},
    {77, row_of("OnActive"), "Path", 0},
    {78, row_of("OnActive"), "Args", 0},
    {79, row_of("OnActive"), "DefaultArgs", 0},
    {80, row_of("OnStandBy"), "status", 0},
    {81, row_of("OnStandBy"), "Path", 0},
    {82, row_of("OnStandBy"), "Args", 0},
    {83, row_of("OnStandBy"), "DefaultArgs", 0},
    {84, row_of("Switchover"), "Automatic", 0},
    {85, row_of("Switchover"), "MonitorServiceListEdit", 0},
    {86, row_of("Switchover"), "ListMonitorServices", 0},
    {87, row_of("MonitorService"), "ServiceName", 0},
    {88, row_of("StopDB"), "status", 0},
    {89, row_of("StopDB"), "Path", 0},
    {90, row_of("StopDB"), "Args", 0},
    {91, row_of("StopDB"), "DefaultArgs", 0},
    {92, row_of("StartDB"), "status", 0},
    {93, row_of("StartDB"), "Path", 0},
    {94, row_of("StartDB"), "Args", 0},
    {95, row_of("StartDB"), "DefaultArgs", 0},
    {96, row_of("OnSuccessScript"), "status", 0},
    {97, row_of("OnSuccessScript"), "Path", 0},
    {98, row_of("OnSuccessScript"), "Args", 0},
    {99, row_of("OnSuccessScript"), "DefaultArgs", 0},
    {100, row_of("OnFailureScript"), "status", 0},
    {101, row_of("OnFailureScript"), "Path", 0},
    {102, row_of("OnFailureScript"), "Args", 0},
    {103, row_of("OnFailureScript"), "DefaultArgs", 0},
    {104, row_of("Scenario"), "ReplicationMode", 0},
    {105, row_of("Scenario"), "SyncWithReplacement", 0},
    {106, row_of("Scenario"), "Scheduling", 0},
    {107, row_of("SchedulerReplMode"), "status", 0},
    {108, row_of("Scenario"), "ReplicationInterval", 0},
    {109, row_of("Scenario"), "RotateJournalTimeout", 0},
    {110, row_of("Scenario"), "AutoSynchronization", 0},
    {111, row_of("Scenario"), "SynchType", 0},
    {112, row_of("Scenario"), "ExcludeSameSizeFiles", 0},
    {113, row_of("Scenario"), "FullQualifiedName", 0},
    {114, row_of("Scenario"), "BuildACL", 0},
    {115, row_of("Scenario"), "ReplaceACL", 0},
    {116, row_of("Scenario"), "SyncADS", 0},
    {117, row_of("Scenario"), "BuildShares", 0},
    {118, row_of("Scenario"), "KeepArchiveAttribute", 0},
    {119, row_of("Scenario"), "ReplicateCompressAttr", 0},
    {120, row_of("Scenario"), "MaintainWriteOrder", 0},
    {121, row_of("Scenario"), "Inject", 0},
    {122, row_of("Scenario"), "StopOnError", 0},
    {123, row_of("Scenario"), "StopScenario", 0},
    {124, row_of("Scenario"), "NumberOfSockets", 0},
    {125, row_of("Scenario"), "UserCredential", 0},
    {126, row_of("Scenario"), "SystemStateProtection", 0},
    {127, row_of("Scenario"), "DeleteSnapshotsScenario", 0},
    {128, row_of("Scenario"), "DefaultReplSpoolSpace", 0},
    {129, row_of("Scenario"), "SystemStateRecovery", 0},
    {130, row_of("Switchover"), "vCenterManagedIP", 0},
    {131, row_of("Switchover"), "CPUInfo", 0},
    {132, row_of("Switchover"), "MemoryInfo", 0},
    {133, row_of("Scenario"), "RecoveryP2VSnapshot", 0},
    {134, row_of("Switchover"), "VirtualMachineName", 0},
    {135, row_of("Scenario"), "IsBMRRestore", 0},
    {136, row_of("Scenario"), "IsP2P", 0},
    {137, row_of("TraficRedirection"), "DisableMasterNetworkAdapters", 0},
    {138, row_of("RedirectDNS"), "DomainAdminName", 0},
    {139, row_of("RedirectDNS"), "DomainAdminPassword", 0},
    {140, row_of("Scenario"), "P2VApplianceHost", 0},
    {141, row_of("Scenario"), "P2VAppliancePort", 0},
};

inline constexpr std::uint32_t host_data_count = 179;
inline constexpr host_data_s host_data_table[host_data_count] = {
    {0, row_of("CommonHostProps"), "Host", 0},
    {1, row_of("CommonHostProps"), "IP", 0},
    {2, row_of("CommonHostProps"), "Data_IP", 0},
    {3, row_of("CommonHostProps"), "Port", 0},
    {4, row_of("CommonHostProps"), "Index", 0},
    {5, row_of("CommonHostProps"), "Role", 0},
    {6, row_of("CommonHostProps"), "Compress", 0},
    {7, row_of("CommonHostProps"), "IOThrottler", 0},
    {8, row_of("CommonHostProps"), "SpoolDirectory", 0},
    {9, row_of("CommonHostProps"), "SpoolSpaceThreshold", 0},
    {10, row_of("CommonHostProps"), "FreeSpaceThreshold", 0},
    {11, row_of("CommonHostProps"), "Proxy", 0},
    {12, row_of("CommonHostProps"), "Server", 0},
    {13, row_of("CommonHostProps"), "ProxyPort", 0},
    {14, row_of("CommonHostProps"), "Credential", 0},
    {15, row_of("CommonHostProps"), "EnableProxy", 0},
    {16, row_of("SyncScriptBefore"), "status", 0},
    {17, row_of("SyncScriptBefore"), "Path", 0},
    {18, row_of("SyncScriptBefore"), "Args", 0},
    {19, row_of("SyncScriptBefore"), "DefaultArgs", 0},
    {20, row_of("SyncScriptAfter"), "status", 0},
    {21, row_of("SyncScriptAfter"), "Path", 0},
    {22, row_of("SyncScriptAfter"), "Args", 0},
    {23, row_of("SyncScriptAfter"), "DefaultArgs", 0},
    {24, row_of("ListRegistryPaths_32"), "RegistryPaths", 0},
    {25, row_of("ListRegistryPaths_64"), "RegistryPaths", 0},
    {26, row_of("CommonHostProps"), "UserCredential", 0},
    {27, row_of("SpecificReplicaProps"), "Delay", 0},
    {28, row_of("SpecificReplicaProps"), "DelayTimeOut", 0},
    {29, row_of("SpecificReplicaProps"), "DataRewind", 0},
    {30, row_of("SpecificReplicaProps"), "ReciveryInterval", 0},
    {31, row_of("SpecificReplicaProps"), "MaxDiskSize", 0},
    {32, row_of("SpecificReplicaProps"), "NumUnsuccAttempts", 0},
    {33, row_of("SpecificReplicaProps"), "UnsuccAttemptsTimeout", 0},
    {34, row_of("SpecificReplicaProps"), "BandWidth", 0},
    {35, row_of("SpecificReplicaProps"), "KeepFilesDuringSynchron", 0},
    {36, row_of("SpecificReplicaProps"), "KeepFilesDuringReplication", 0},
    {37, row_of("SpecificReplicaProps"), "StopDBOnRun", 0},
    {38, row_of("SpecificReplicaProps"), "FailoverHost", 0},
    {39, row_of("SpecificReplicaProps"), "CDPHost", 0},
    {40, row_of("SpecificReplicaProps"), "CDPReportStatus", 0},
    {41, row_of("SpecificReplicaProps"), "CDPReportDetailed", 0},
    {42, row_of("SpecificReplicaProps"), "CreateVSS", 0},
    {43, row_of("SpecificReplicaProps"), "NumOfSnapshotSetToKeep", 0},
    {44, row_of("SpecificReplicaProps"), "ShadowStorageVolume", 0},
    {45, row_of("SpecificReplicaProps"), "ShadowStorageMaxSize", 0},
    {46, row_of("SpecificReplicaProps"), "SecureCommLevel", 0},
    {47, row_of("SpecificReplicaProps"), "VSM", 0},
    {48, row_of("SpecificReplicaProps"), "Number", 0},
    {49, row_of("SpecificReplicaProps"), "Storage", 0},
    {50, row_of("SpecificReplicaProps"), "StorageSize", 0},
    {51, row_of("CommonHostProps"), "CloudProvider", 0},
    {52, row_of("CommonHostProps"), "CloudAccount", 0},
    {53, row_of("CommonHostProps"), "CloudInstanceID", 0},
    {54, row_of("CommonHostProps"), "CloudRegion", 0},
    {55, row_of("CommonHostProps"), "CloudStopInstance", 0},
    {56, row_of("CommonHostProps"), "CloudCleanUpResources", 0},
    {57, row_of("TriggerFile"), "status", 0},
    {58, row_of("TriggerFile"), "TargetFile", 0},
    {59, row_of("TrigFileScript"), "status", 0},
    {60, row_of("TrigFileScript"), "Path", 0},
    {61, row_of("TrigFileScript"), "Args", 0},
    {62, row_of("TrigFileScript"), "DefaultArgs", 0},
    {63, row_of("Report"), "status", 1},
    {64, row_of("Report"), "SynchReportStatus", 1},
    {65, row_of("Report"), "SynchReportDetailed", 1},
    {66, row_of("Report"), "ReplReportStatus", 1},
    {67, row_of("Report"), "ReplReportTimeout", 1},
    {68, row_of("Report"), "ReplReportDetailed", 1},
    {69, row_of("Report"), "VettedFailbackReportStatus", 1},
    {70, row_of("Report"), "StoreReportOnThisHost", 1},
    {71, row_of("Report"), "ReportRetention", 1},
    {72, row_of("Report"), "OnThisHostReportDir", 1},
    {73, row_of("Report"), "Delegate", 1},
    {74, row_of("ReportNotifyEmail"), "status", 1},
    {75, row_of("ReportNotifyEmail"), "MailServer", 1},
    {76, row_of("ReportNotifyEmail"), "MailServerPort", 1},
    {77, row_of("ReportNotifyEmail"), "EmailAddressTo", 1},
    {78, row_of("ReportNotifyEmail"), "EmailAddressFrom", 1},
    {79, row_of("ReportNotifyEmail"), "MailAdvancedSettings", 1},
    {80, row_of("ReportScript"), "status", 1},
    {81, row_of("ReportScript"), "Path", 1},
    {82, row_of("ReportScript"), "Args", 1},
    {83, row_of("ReportScript"), "DefaultArgs", 1},
    {84, row_of("EventNotification"), "status", 1},
    {85, row_of("EventNotification"), "Syslog", 1},
    {86, row_of("NotifyByEmail"), "status", 1},
    {87, row_of("NotifyByEmail"), "OnErrorOnly", 1},
    {88, row_of("NotifyByEmail"), "MailServer", 1},
    {89, row_of("NotifyByEmail"), "MailServerPort", 1},
    {90, row_of("NotifyByEmail"), "EmailAddressTo", 1},
    {91, row_of("NotifyByEmail"), "EmailAddressFrom", 1},
    {92, row_of("NotifyByEmail"), "MailAdvancedSettings", 1},
    {93, row_of("EventNotifScript"), "status", 1},
    {94, row_of("EventNotifScript"), "Path", 1},
    {95, row_of("EventNotifScript"), "Args", 1},
    {96, row_of("EventNotifScript"), "DefaultArgs", 1},
    {97, row_of("VettedFailbackObj"), "status", 0},
    {98, row_of("SchedulerVF"), "status", 0},
    {99, row_of("VettedFailbackObj"), "StartDB", 0},
    {100, row_of("VettedFailbackObj"), "AutomaticStartDB", 0},
    {101, row_of("VFStartDBScript"), "status", 0},
    {102, row_of("VFStartDBScript"), "Path", 0},
    {103, row_of("VFStartDBScript"), "Args", 0},
    {104, row_of("VFStartDBScript"), "DefaultArgs", 0},
    {105, row_of("VettedFailbackObj"), "DbTesting", 0},
    {106, row_of("VettedFailbackObj"), "AutomaticDbTest", 0},
    {107, row_of("VFTestDBScript"), "status", 0},
    {108, row_of("VFTestDBScript"), "Path", 0},
    {109, row_of("VFTestDBScript"), "Args", 0},
    {110, row_of("VFTestDBScript"), "DefaultArgs", 0},
    {111, row_of("VettedFailbackObj"), "SuccessActOnline", 0},
    {112, row_of("OnlineScript"), "status", 0},
    {113, row_of("OnlineScript"), "Path", 0},
    {114, row_of("OnlineScript"), "Args", 0},
    {115, row_of("OnlineScript"), "DefaultArgs", 0},
    {116, row_of("VettedFailbackObj"), "StopDB", 0},
    {117, row_of("VettedFailbackObj"), "AutomaticStopDB", 0},
    {118, row_of("VFStopDBScript"), "status", 0},
    {119, row_of("VFStopDBScript"), "Path", 0},
    {120, row_of("VFStopDBScript"), "Args", 0},
    {121, row_of("VFStopDBScript"), "DefaultArgs", 0},
    {122, row_of("VettedFailbackObj"), "SuccessActOffline", 0},
    {123, row_of("VettedFailbackObj"), "ShadowCopy", 0},
    {124, row_of("VettedFailbackObj"), "NumSnapsh", 0},
    {125, row_of("VettedFailbackObj"), "Volume", 0},
    {126, row_of("VettedFailbackObj"), "StoreSize", 0},
    {127, row_of("OfflineScript"), "status", 0},
    {128, row_of("OfflineScript"), "Path", 0},
    {129, row_of("OfflineScript"), "Args", 0},
    {130, row_of("OfflineScript"), "DefaultArgs", 0},
    {131, row_of("Suspend"), "status", 0},
    {132, row_of("Suspend"), "OffLineShadowCopy", 0},
    {133, row_of("Suspend"), "NumSnapsh", 0},
    {134, row_of("Suspend"), "Volume", 0},
    {135, row_of("Suspend"), "StoreSize", 0},
    {136, row_of("SuspendScheduler"), "status", 0},
    {137, row_of("SuspendScript"), "status", 0},
    {138, row_of("SuspendScript"), "Path", 0},
    {139, row_of("SuspendScript"), "Args", 0},
    {140, row_of("SuspendScript"), "DefaultArgs", 0},
    {141, row_of("SuspendOfflineScript"), "status", 0},
    {142, row_of("SuspendOfflineScript"), "Path", 0},
    {143, row_of("SuspendOfflineScript"), "Args", 0},
    {144, row_of("SuspendOfflineScript"), "DefaultArgs", 0},
    {145, row_of("SpecificReplicaProps"), "RetainSystemState", 0},
    {146, row_of("SpecificReplicaProps"), "SysStateSpoolDirectory", 0},
    {147, row_of("SpecificReplicaProps"), "SysStateSpoolSpaceThreshold", 0},
    {148, row_of("SpecificReplicaProps"), "SysStateFreeSpaceThreshold", 0},
    {149, row_of("SpecificReplicaProps"), "RetentionCount", 0},
    {150, row_of("SpecificReplicaProps"), "DeleteSnapshotsReplica", 0},
    {151, row_of("SpecificReplicaProps"), "MoveSnapshotsToNewDirectory", 0},
    {152, row_of("SpecificReplicaProps"), "Initial", 0},
    {153, row_of("SpecificReplicaProps"), "VMLocalDirectory", 0},
    {154, row_of("SpecificReplicaProps"), "VirtualDiskFormat", 0},
    {155, row_of("SpecificReplicaProps"), "MaxBookmarkCount", 0},
    {156, row_of("SpecificReplicaProps"), "VirtualPlatformType", 0},
    {157, row_of("SpecificReplicaProps"), "VirtualPlatform", 0},
    {158, row_of("SpecificReplicaProps"), "VirtualPlatformPort", 0},
    {159, row_of("SpecificReplicaProps"), "VMDataCenter", 0},
    {160, row_of("SpecificReplicaProps"), "DC_id", 0},
    {161, row_of("SpecificReplicaProps"), "VMStorage", 0},
    {162, row_of("SpecificReplicaProps"), "storage_id", 0},
    {163, row_of("SpecificReplicaProps"), "IsProvision", 0},
    {164, row_of("SpecificReplicaProps"), "HavCluster", 0},
    {165, row_of("SpecificReplicaProps"), "VMResourcePool", 0},
    {166, row_of("SpecificReplicaProps"), "resource_id", 0},
    {167, row_of("SpecificReplicaProps"), "CPUInfo", 0},
    {168, row_of("SpecificReplicaProps"), "MemoryInfo", 0},
    {169, row_of("SpecificReplicaProps"), "VirtualMachineName", 0},
    {170, row_of("SpecificReplicaProps"), "CloudInstanceType", 0},
    {171, row_of("SpecificReplicaProps"), "SSLConnection", 0},
    {172, row_of("SpecificReplicaProps"), "VMHostServer", 0},
    {173, row_of("SpecificReplicaProps"), "host_server_id", 0},
    {174, row_of("SpecificReplicaProps"), "VirtualPlatformInfo", 0},
    {175, row_of("SpecificReplicaProps"), "host_system_id", 0},
    {176, row_of("CommonHostProps"), "CommonDBScheduledBookmarks", 0},
    {177, row_of("Switchover"), "VirtualNetworkMappingsEdit", 0},
    {178, row_of("Switchover"), "VirtualNetworkMappingsEditSwitchover", 0},
};

inline constexpr std::uint32_t group_data_count = 32;
inline constexpr scenario_data_s group_data_table[group_data_count] = {
    {0, row_of("Group"), "GroupID", 1},
    {1, row_of("Group"), "Product", 0},
    {2, row_of("Group"), "GroupName", 0},
    {3, row_of("Group"), "Group_VersionNumber", 0},
    {4, row_of("Group"), "GroupType", 0},
    {5, row_of("Group"), "Signature", 0},
    {6, row_of("Failover_together"), "status", 0},
    {7, row_of("Failover_together"), "ExecScenFailoverConfig", 0},
    {8, row_of("GroupEventNotification"), "status", 1},
    {9, row_of("GroupEventNotification"), "Syslog", 1},
    {10, row_of("GroupNotifyByEmail"), "status", 1},
    {11, row_of("GroupNotifyByEmail"), "OnErrorOnly", 1},
    {12, row_of("GroupNotifyByEmail"), "MailServer", 1},
    {13, row_of("GroupNotifyByEmail"), "MailServerPort", 1},
    {14, row_of("GroupNotifyByEmail"), "EmailAddressTo", 1},
    {15, row_of("GroupNotifyByEmail"), "EmailAddressFrom", 1},
    {16, row_of("GroupNotifyByEmail"), "MailAdvancedSettings", 1},
    {17, row_of("GroupEventNotifScript"), "status", 1},
    {18, row_of("GroupEventNotifScript"), "Path", 1},
    {19, row_of("GroupEventNotifScript"), "Args", 1},
    {20, row_of("GroupEventNotifScript"), "DefaultArgs", 1},
    {21, row_of("GroupReport"), "status", 1},
    {22, row_of("GroupReportNotifyEmail"), "status", 1},
    {23, row_of("GroupReportNotifyEmail"), "MailServer", 1},
    {24, row_of("GroupReportNotifyEmail"), "MailServerPort", 1},
    {25, row_of("GroupReportNotifyEmail"), "EmailAddressTo", 1},
    {26, row_of("GroupReportNotifyEmail"), "EmailAddressFrom", 1},
    {27, row_of("GroupReportNotifyEmail"), "MailAdvancedSettings", 1},
    {28, row_of("GroupReportScript"), "status", 1},
    {29, row_of("GroupReportScript"), "Path", 1},
    {30, row_of("GroupReportScript"), "Args", 1},
    {31, row_of("GroupReportScript"), "DefaultArgs", 1},
};

inline constexpr std::uint32_t group_scenario_data_count = 6;
inline constexpr scenario_data_s group_scenario_data_table[group_scenario_data_count] = {
    {0, row_of("ScenarioInfo"), "ScenarioID", 0},
    {1, row_of("ScenarioInfo"), "DescendantID", 0},
    {2, row_of("ScenarioFailoverInfo"), "IsPrimary", 0},
    {3, row_of("ScenarioRedundancySet"), "RedundancyScenID", 0},
    {4, row_of("ScenarioRedundancySet"), "RedundancyName", 0},
    {5, row_of("ScenarioDependencySet"), "DependencyScenID", 0},
};

inline constexpr std::uint32_t group_list_count = 5;
inline constexpr group_list_s group_list_table[group_list_count] = {
    {0, row_of("ScenarioInfo"), "ScenarioList"},
    {1, row_of("HostProps"), "HostList"},
    {2, row_of("ScenarioFailoverInfo"), "FailoverScenarioList"},
    {3, row_of("ScenarioRedundancySet"), "ScenarioRedundancyList"},
    {4, row_of("ScenarioDependencySet"), "ScenarioDependencyList"},
};

// The host rows that the group's host settings copy, in the group table's order.
inline constexpr std::uint32_t group_host_data_count = 5;
inline constexpr std::uint32_t group_host_rows[group_host_data_count] = {0, 1, 3, 4, 5};

// Only the index, object and label of row 0 are there before start-up; the rest is written by
// complete_group_host_data_table, the start-up step that follows the generic configurator's.
// Read it only after the library has started.
extern group_host_data_s group_host_data_table[group_host_data_count];
// Fills group_host_data_table from host_data_table. Running it again changes nothing.
void complete_group_host_data_table();
// Whether the step has run (the table is whole).
bool group_host_data_table_complete();

} // namespace xmc_enums_n
