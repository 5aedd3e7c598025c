// The code tables against a restatement of them typed in another shape: enumerations as item
// lists, objects with their papa by name, settings as ranges of rows with starred labels. A slip
// in either the tables or the restatement shows as a difference.
#include "configuration/xmc_enums.h"
#include "stats_mng/load_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

using namespace xmc_enums_n;

namespace {

struct enum_row_s {
    std::uint32_t index;
    const char* name;
    const char* items;
};

struct object_row_s {
    const char* name;
    const char* papa;
    std::uint32_t id;
};

struct range_s {
    std::uint32_t first;
    std::uint32_t last;
    const char* object;
    const char* labels; // a star after a label marks the flag
};

const enum_row_s enum_rows[] = {
    {0, "Type",
     "Enum, Number, Bool, String, Text, FullPath, DefFullPath, IPAddr, IPAdrMask, Date, "
     "MultiEntry, Any"},
    {1, "Product", "Dr, Ha, Cd, Rw"},
    {2, "Application",
     "FileServer, Exchange, Oracle, DB2, SQL, IIS, ControlService, HyperV, SharePoint, vCenter, "
     "CRM, FullSystem, CustomApp"},
    {3, "ConfigMode",
     "Template, Regular, Synchron, Verific, Assessment, Recovery, Backward, Rewind"},
    {4, "ReplicationMode", "Online, Scheduling, OnFileClose, Scheduled"},
    {5, "Bandwidth",
     "56.0, 64.0, 128.0, 192.0, 256.0, 512.0, 1024.0, 1544.0, 2048.0, 4096.0, 10240.0, 20480.0, "
     "30720.0, 40960.0, 102400.0, Unlimited"},
    {6, "HostTask", "None, Manager, Master, Replica"},
    {7, "Schedule", "ByUserRequest, WeeklyActivity"},
    {8, "SynchronizationType", "FileSynchronization, BlockSynchronization, VolumeSynchronization"},
    {9, "GroupType", "default_scenarios, default_templates, regular, distributed, customized"},
    {10, "VirtualHardDiskType", "DynamicallyExpanding, FixSize"},
    {11, "VirtualPlatformType", "HyperV, Esx, vSphere, Xen, EC2"},
    {12, "NumberOfSocketsType", "Default, 1, 5, 10"},
    {13, "CloudProviderType", "AmazonEC2"},
    {14, "CloudInstanceType",
     "ec2_t1_micro, ec2_m1_small, ec2_m1_large, ec2_m1_xlarge, ec2_m2_xlarge, ec2_m2_2xlarge, "
     "ec2_m2_4xlarge, ec2_c1_medium, ec2_c1_xlarge, ec2_m1_medium, ec2_cc1_4xlarge, "
     "ec2_cc2_8xlarge, ec2_cg1_4xlarge, ec2_hi1_4xlarge"},
    {15, "SecureCommunicationLevel", "0, 1, 2, 3"},
};

const object_row_s object_rows[] = {
    {"Scenario", "Scenario", 0},
    {"Switchover", "Scenario", 4500},
    {"VirtualNetworkMapping", "Switchover", 4450},
    {"TraficRedirection", "Switchover", 4600},
    {"RedirectDNS", "TraficRedirection", 4700},
    {"SwitchCompName", "TraficRedirection", 4770},
    {"ActiveToStandBy", "TraficRedirection", 300},
    {"StandByToActive", "TraficRedirection", 300},
    {"IdentifyTraffic", "TraficRedirection", 300},
    {"OnActive", "Switchover", 300},
    {"OnStandBy", "Switchover", 300},
    {"MonitorService", "Switchover", 5500},
    {"MonitorBackupVM", "Switchover", 8080},
    {"StopDB", "Switchover", 300},
    {"StartDB", "Switchover", 300},
    {"OnSuccessScript", "Switchover", 300},
    {"OnFailureScript", "Switchover", 300},
    {"ReplNode", "Scenario", 0},
    {"CommonHostProps", "ReplNode", 100},
    {"SpecificReplicaProps", "ReplNode", 150},
    {"SyncScriptBefore", "CommonHostProps", 300},
    {"SyncScriptAfter", "CommonHostProps", 300},
    {"SchedulerReplMode", "Scenario", 400},
    {"ListRegistryPaths_32", "CommonHostProps", 250},
    {"ListRegistryPaths_64", "CommonHostProps", 250},
    {"RootDir", "CommonHostProps", 0},
    {"FileRegExpr", "RootDir", 0},
    {"DirRegExpr", "RootDir", 0},
    {"DirPath", "RootDir", 0},
    {"MatchAllKidsVolume", "RootDir", 0},
    {"External", "Scenario", 0},
    {"IOThrottler", "CommonHostProps", 350},
    {"Report", "CommonHostProps", 3500},
    {"ReportNotifyEmail", "Report", 3620},
    {"ReportScript", "Report", 300},
    {"EventNotification", "CommonHostProps", 1120},
    {"NotifyByEmail", "EventNotification", 3620},
    {"EventNotifScript", "EventNotification", 300},
    {"TriggerFile", "CommonHostProps", 4200},
    {"TrigFileScript", "TriggerFile", 300},
    {"BandwidthThrottler", "SpecificReplicaProps", 350},
    {"ReplicaScheduledTask", "SpecificReplicaProps", 4300},
    {"Suspend", "ReplicaScheduledTask", 4400},
    {"SuspendScheduler", "Suspend", 400},
    {"SuspendScript", "Suspend", 300},
    {"SuspendOfflineScript", "Suspend", 300},
    {"VettedFailbackObj", "ReplicaScheduledTask", 4310},
    {"SchedulerVF", "VettedFailbackObj", 400},
    {"VFStartDBScript", "VettedFailbackObj", 300},
    {"VFTestDBScript", "VettedFailbackObj", 300},
    {"OnlineScript", "VettedFailbackObj", 300},
    {"VFStopDBScript", "VettedFailbackObj", 300},
    {"OfflineScript", "VettedFailbackObj", 300},
    {"SchedulerSysState", "Scenario", 400},
    {"SchedulerDBBM", "CommonHostProps", 400},
    {"Group", "Group", 8000},
    {"ScenarioInfo", "Group", 8010},
    {"HostProps", "ScenarioInfo", 8020},
    {"ScenarioDependencySet", "Group", 8070},
    {"GroupFailover", "Group", 8030},
    {"Failover_together", "GroupFailover", 8040},
    {"ScenarioFailoverInfo", "Failover_together", 8050},
    {"ScenarioRedundancySet", "GroupFailover", 8060},
    {"GroupEventNotification", "Group", 8200},
    {"GroupNotifyByEmail", "GroupEventNotification", 8210},
    {"GroupEventNotifScript", "GroupEventNotification", 8220},
    {"GroupReport", "Group", 8100},
    {"GroupReportNotifyEmail", "GroupReport", 8110},
    {"GroupReportScript", "GroupReport", 8120},
};

const range_s scenario_ranges[] = {
    {0, 28, "Scenario",
     "ScenarioID*, GroupID, ConfigMode*, ScenarioName, ScenarioComment, AutoStartVMAfterRestore, "
     "DescendantID*, IsForward*, IsCDPScenario*, CDPRunTimeout*, QuillonIntegrated*, QuillonName, "
     "RegistrySynchronization, Interval, QuillonVexIntegrated*, QuillonVexName, "
     "QuillonCntrlAppIntegrated*, QuillonCntrlAppName, ListMonitorBackupVM, VMInstanceUUID, "
     "QuillonCntrlAppUser, QuillonCntrlAppPass, ParentRootDirChecked, QuillonCntrlAppUserUUID, "
     "RecoveryNodeID*, OriginalID*, Signature, Version*, TemplateID*"},
    {29, 35, "Switchover",
     "status, HostName, PerformAutomatically, RunReverse, MasterFQName, ReplicaFQName, "
     "VirtualMachineFQName"},
    {36, 38, "TraficRedirection", "status, MoveIP, IPMask"},
    {39, 48, "RedirectDNS",
     "status, DNS_ServerIPs, DNS_TTL, AD_Integrated, DNS_Scavenging, DNS_KeyFilename, "
     "MasterIPinDNS, ReplicaIPinDNS, VirtualMachineIPOnMasterinDNS, "
     "VirtualMachineIPOnReplicainDNS"},
    {49, 53, "SwitchCompName", "status, MasterCompName, ReplicaCompName, WithReboot, UseAlias"},
    {54, 56, "TraficRedirection", "SwitchAlias, AliasInfo, AliasName"},
    {57, 60, "ActiveToStandBy", "status, Path, Args, DefaultArgs"},
    {61, 64, "StandByToActive", "status, Path, Args, DefaultArgs"},
    {65, 68, "IdentifyTraffic", "status, Path, Args, DefaultArgs"},
    {69, 75, "Switchover",
     "IsAliveTimeout, HeartbeatTimeout, SendPing, PingIP, FromMasterPingIP, FromReplicaPingIP, "
     "ConnectToDB"},
    {76, 79, "OnActive", "status, Path, Args, DefaultArgs"},
    {80, 83, "OnStandBy", "status, Path, Args, DefaultArgs"},
    {84, 86, "Switchover", "Automatic, MonitorServiceListEdit, ListMonitorServices"},
    {87, 87, "MonitorService", "ServiceName"},
    {88, 91, "StopDB", "status, Path, Args, DefaultArgs"},
    {92, 95, "StartDB", "status, Path, Args, DefaultArgs"},
    {96, 99, "OnSuccessScript", "status, Path, Args, DefaultArgs"},
    {100, 103, "OnFailureScript", "status, Path, Args, DefaultArgs"},
    {104, 106, "Scenario", "ReplicationMode, SyncWithReplacement, Scheduling"},
    {107, 107, "SchedulerReplMode", "status"},
    {108, 129, "Scenario",
     "ReplicationInterval, RotateJournalTimeout, AutoSynchronization, SynchType, "
     "ExcludeSameSizeFiles, FullQualifiedName, BuildACL, ReplaceACL, SyncADS, BuildShares, "
     "KeepArchiveAttribute, ReplicateCompressAttr, MaintainWriteOrder, Inject, StopOnError, "
     "StopScenario, NumberOfSockets, UserCredential, SystemStateProtection, "
     "DeleteSnapshotsScenario, DefaultReplSpoolSpace, SystemStateRecovery"},
    {130, 132, "Switchover", "vCenterManagedIP, CPUInfo, MemoryInfo"},
    {133, 133, "Scenario", "RecoveryP2VSnapshot"},
    {134, 134, "Switchover", "VirtualMachineName"},
    {135, 136, "Scenario", "IsBMRRestore, IsP2P"},
    {137, 137, "TraficRedirection", "DisableMasterNetworkAdapters"},
    {138, 139, "RedirectDNS", "DomainAdminName, DomainAdminPassword"},
    {140, 141, "Scenario", "P2VApplianceHost, P2VAppliancePort"},
};

const range_s host_ranges[] = {
    {0, 15, "CommonHostProps",
     "Host, IP, Data_IP, Port, Index, Role, Compress, IOThrottler, SpoolDirectory, "
     "SpoolSpaceThreshold, FreeSpaceThreshold, Proxy, Server, ProxyPort, Credential, EnableProxy"},
    {16, 19, "SyncScriptBefore", "status, Path, Args, DefaultArgs"},
    {20, 23, "SyncScriptAfter", "status, Path, Args, DefaultArgs"},
    {24, 24, "ListRegistryPaths_32", "RegistryPaths"},
    {25, 25, "ListRegistryPaths_64", "RegistryPaths"},
    {26, 26, "CommonHostProps", "UserCredential"},
    {27, 50, "SpecificReplicaProps",
     "Delay, DelayTimeOut, DataRewind, ReciveryInterval, MaxDiskSize, NumUnsuccAttempts, "
     "UnsuccAttemptsTimeout, BandWidth, KeepFilesDuringSynchron, KeepFilesDuringReplication, "
     "StopDBOnRun, FailoverHost, CDPHost, CDPReportStatus, CDPReportDetailed, CreateVSS, "
     "NumOfSnapshotSetToKeep, ShadowStorageVolume, ShadowStorageMaxSize, SecureCommLevel, VSM, "
     "Number, Storage, StorageSize"},
    {51, 56, "CommonHostProps",
     "CloudProvider, CloudAccount, CloudInstanceID, CloudRegion, CloudStopInstance, "
     "CloudCleanUpResources"},
    {57, 58, "TriggerFile", "status, TargetFile"},
    {59, 62, "TrigFileScript", "status, Path, Args, DefaultArgs"},
    {63, 73, "Report",
     "status*, SynchReportStatus*, SynchReportDetailed*, ReplReportStatus*, ReplReportTimeout*, "
     "ReplReportDetailed*, VettedFailbackReportStatus*, StoreReportOnThisHost*, ReportRetention*, "
     "OnThisHostReportDir*, Delegate*"},
    {74, 79, "ReportNotifyEmail",
     "status*, MailServer*, MailServerPort*, EmailAddressTo*, EmailAddressFrom*, "
     "MailAdvancedSettings*"},
    {80, 83, "ReportScript", "status*, Path*, Args*, DefaultArgs*"},
    {84, 85, "EventNotification", "status*, Syslog*"},
    {86, 92, "NotifyByEmail",
     "status*, OnErrorOnly*, MailServer*, MailServerPort*, EmailAddressTo*, EmailAddressFrom*, "
     "MailAdvancedSettings*"},
    {93, 96, "EventNotifScript", "status*, Path*, Args*, DefaultArgs*"},
    {97, 97, "VettedFailbackObj", "status"},
    {98, 98, "SchedulerVF", "status"},
    {99, 100, "VettedFailbackObj", "StartDB, AutomaticStartDB"},
    {101, 104, "VFStartDBScript", "status, Path, Args, DefaultArgs"},
    {105, 106, "VettedFailbackObj", "DbTesting, AutomaticDbTest"},
    {107, 110, "VFTestDBScript", "status, Path, Args, DefaultArgs"},
    {111, 111, "VettedFailbackObj", "SuccessActOnline"},
    {112, 115, "OnlineScript", "status, Path, Args, DefaultArgs"},
    {116, 117, "VettedFailbackObj", "StopDB, AutomaticStopDB"},
    {118, 121, "VFStopDBScript", "status, Path, Args, DefaultArgs"},
    {122, 126, "VettedFailbackObj", "SuccessActOffline, ShadowCopy, NumSnapsh, Volume, StoreSize"},
    {127, 130, "OfflineScript", "status, Path, Args, DefaultArgs"},
    {131, 135, "Suspend", "status, OffLineShadowCopy, NumSnapsh, Volume, StoreSize"},
    {136, 136, "SuspendScheduler", "status"},
    {137, 140, "SuspendScript", "status, Path, Args, DefaultArgs"},
    {141, 144, "SuspendOfflineScript", "status, Path, Args, DefaultArgs"},
    {145, 175, "SpecificReplicaProps",
     "RetainSystemState, SysStateSpoolDirectory, SysStateSpoolSpaceThreshold, "
     "SysStateFreeSpaceThreshold, RetentionCount, DeleteSnapshotsReplica, "
     "MoveSnapshotsToNewDirectory, Initial, VMLocalDirectory, VirtualDiskFormat, MaxBookmarkCount, "
     "VirtualPlatformType, VirtualPlatform, VirtualPlatformPort, VMDataCenter, DC_id, VMStorage, "
     "storage_id, IsProvision, HavCluster, VMResourcePool, resource_id, CPUInfo, MemoryInfo, "
     "VirtualMachineName, CloudInstanceType, SSLConnection, VMHostServer, host_server_id, "
     "VirtualPlatformInfo, host_system_id"},
    {176, 176, "CommonHostProps", "CommonDBScheduledBookmarks"},
    {177, 178, "Switchover", "VirtualNetworkMappingsEdit, VirtualNetworkMappingsEditSwitchover"},
};

const range_s group_ranges[] = {
    {0, 5, "Group", "GroupID*, Product, GroupName, Group_VersionNumber, GroupType, Signature"},
    {6, 7, "Failover_together", "status, ExecScenFailoverConfig"},
    {8, 9, "GroupEventNotification", "status*, Syslog*"},
    {10, 16, "GroupNotifyByEmail",
     "status*, OnErrorOnly*, MailServer*, MailServerPort*, EmailAddressTo*, EmailAddressFrom*, "
     "MailAdvancedSettings*"},
    {17, 20, "GroupEventNotifScript", "status*, Path*, Args*, DefaultArgs*"},
    {21, 21, "GroupReport", "status*"},
    {22, 27, "GroupReportNotifyEmail",
     "status*, MailServer*, MailServerPort*, EmailAddressTo*, EmailAddressFrom*, "
     "MailAdvancedSettings*"},
    {28, 31, "GroupReportScript", "status*, Path*, Args*, DefaultArgs*"},
};

const range_s group_scenario_ranges[] = {
    {0, 1, "ScenarioInfo", "ScenarioID, DescendantID"},
    {2, 2, "ScenarioFailoverInfo", "IsPrimary"},
    {3, 4, "ScenarioRedundancySet", "RedundancyScenID, RedundancyName"},
    {5, 5, "ScenarioDependencySet", "DependencyScenID"},
};

std::vector<std::string> split_list(const char* text) {
    std::vector<std::string> out;
    std::string current;
    for (const char* p = text;; ++p) {
        if (*p == ',' || *p == 0) {
            while (!current.empty() && current.front() == ' ') current.erase(current.begin());
            if (!current.empty()) out.push_back(current);
            current.clear();
            if (*p == 0) break;
        } else {
            current += *p;
        }
    }
    return out;
}

struct expected_row_s {
    std::uint32_t index;
    std::string object;
    std::string label;
    bool flag;
};

template <std::size_t N> std::vector<expected_row_s> expand(const range_s (&ranges)[N]) {
    std::vector<expected_row_s> rows;
    for (const range_s& r : ranges) {
        std::vector<std::string> labels = split_list(r.labels);
        EXPECT_EQ(labels.size(), r.last - r.first + 1) << r.object << " " << r.first;
        for (std::size_t i = 0; i < labels.size(); ++i) {
            std::string label = labels[i];
            bool flag = !label.empty() && label.back() == '*';
            if (flag) label.pop_back();
            rows.push_back({static_cast<std::uint32_t>(r.first + i), r.object, label, flag});
        }
    }
    return rows;
}

template <class Row, std::size_t N, class Flag>
void check_rows(const Row (&table)[N], const std::vector<expected_row_s>& expected, Flag flag) {
    ASSERT_EQ(expected.size(), N);
    for (std::size_t i = 0; i < N; ++i) {
        SCOPED_TRACE("row " + std::to_string(i));
        EXPECT_EQ(expected[i].index, i);
        EXPECT_EQ(table[i].index, i);
        ASSERT_LT(table[i].object, object_tag_count);
        EXPECT_EQ(expected[i].object, object_tag_table[table[i].object].name);
        EXPECT_EQ(expected[i].label, table[i].label);
        EXPECT_EQ(expected[i].flag, flag(table[i]) == 1);
    }
}

} // namespace

// ---- enumerations -----------------------------------------------------------------------------

TEST(XmcEnums, SixteenEnumerationsWithTheirItemsInPositionOrder) {
    ASSERT_EQ(std::size(enum_rows), 16u);
    for (const enum_row_s& row : enum_rows) {
        SCOPED_TRACE(row.name);
        const xmc_enum_c& record = enum_table[row.index];
        EXPECT_EQ(record.index, row.index);
        EXPECT_STREQ(record.name, row.name);
        std::vector<std::string> items = split_list(row.items);
        ASSERT_EQ(record.count, items.size());
        for (std::uint32_t p = 0; p < items.size(); ++p) {
            EXPECT_EQ(record.items[p].position, p);
            EXPECT_EQ(items[p], record.items[p].name);
        }
        EXPECT_EQ(record.items[record.count].position, record.count);
        EXPECT_STREQ(record.items[record.count].name, "");
        for (std::uint64_t rest = record.count + 1; rest < xmc_enum_c::item_entries; ++rest)
            EXPECT_EQ(record.items[rest].name, nullptr);
    }
}

TEST(XmcEnums, RowCountIsTheNotSetValue) {
    EXPECT_EQ(enum_table[enum_config_mode].count, 8u);
    EXPECT_EQ(enum_table[enum_product].count, 4u);
    EXPECT_EQ(enum_table[enum_application].count, 13u);
}

TEST(XmcEnums, BandwidthFillsAllSeventeenEntries) {
    const xmc_enum_c& bandwidth = enum_table[enum_bandwidth];
    EXPECT_EQ(bandwidth.count, 16u);
    for (const xmc_enum_c& record : enum_table) EXPECT_LE(record.count, bandwidth.count);
    EXPECT_EQ(bandwidth.items[16].position, 16u);
    EXPECT_STREQ(bandwidth.items[16].name, "");
}

TEST(XmcEnums, TextIdsOnlyInVirtualPlatformType) {
    const char* ids[] = {"IR00584", "IR00585", "IR00585", "IR00586", "IR00587"};
    for (const xmc_enum_c& record : enum_table)
        for (std::uint64_t p = 0; p < record.count; ++p) {
            if (record.index == enum_virtual_platform_type)
                EXPECT_STREQ(record.items[p].text_id, ids[p]);
            else
                EXPECT_STREQ(record.items[p].text_id, "") << record.name << " " << p;
        }
}

TEST(XmcEnums, FindEnum) {
    EXPECT_EQ(xmc_enum_c::find_enum("Type"), 0u);
    EXPECT_EQ(xmc_enum_c::find_enum("Application"), 2u);
    EXPECT_EQ(xmc_enum_c::find_enum("SecureCommunicationLevel"), 15u);
    EXPECT_EQ(xmc_enum_c::find_enum("application"), 16u);
    EXPECT_EQ(xmc_enum_c::find_enum(""), 16u);
    EXPECT_EQ(xmc_enum_c::find_enum(nullptr), 16u);
}

TEST(XmcEnums, EnumName) {
    EXPECT_STREQ(xmc_enum_c::enum_name(3), "ConfigMode");
    EXPECT_STREQ(xmc_enum_c::enum_name(16), "");
    EXPECT_STREQ(xmc_enum_c::enum_name(0xFFFFFFFFu), "");
}

TEST(XmcEnums, ItemName) {
    EXPECT_STREQ(xmc_enum_c::item_name(2, 11), "FullSystem");
    EXPECT_STREQ(xmc_enum_c::item_name(2, 13), ""); // the end entry
    EXPECT_STREQ(xmc_enum_c::item_name(2, 15), ""); // a null entry
    EXPECT_STREQ(xmc_enum_c::item_name(5, 16), ""); // Bandwidth's end entry
    EXPECT_STREQ(xmc_enum_c::item_name(5, 18), ""); // above 17
    EXPECT_STREQ(xmc_enum_c::item_name(16, 0), ""); // no such enumeration
    EXPECT_STREQ(xmc_enum_c::item_name(0xFFFFFFFFu, 0xFFFFFFFFu), "");
}

TEST(XmcEnums, FindItem) {
    EXPECT_EQ(xmc_enum_c::find_item(1, "Rw"), 3u);
    EXPECT_EQ(xmc_enum_c::find_item(1, "rw"), xmc_enum_c::not_found);
    EXPECT_EQ(xmc_enum_c::find_item(1, ""), xmc_enum_c::not_found);
    EXPECT_EQ(xmc_enum_c::find_item(1, nullptr), xmc_enum_c::not_found);
    EXPECT_EQ(xmc_enum_c::find_item(16, "Rw"), xmc_enum_c::not_found);
    EXPECT_EQ(xmc_enum_c::not_found, 0xFFFFFFFFu);
}

TEST(XmcEnums, NoneOfHostTaskHasPositionZeroAndRolesAreTwoAndThree) {
    EXPECT_EQ(xmc_enum_c::find_item(enum_host_task, "None"), 0u);
    EXPECT_EQ(xmc_enum_c::find_item(enum_host_task, "Master"), 2u);
    EXPECT_EQ(xmc_enum_c::find_item(enum_host_task, "Replica"), 3u);
}

TEST(XmcEnums, FindTypeOfAnEnumerationName) {
    std::uint32_t e = 99;
    EXPECT_EQ(xmc_enum_c::find_type("Application", e), 0u);
    EXPECT_EQ(e, 2u);
}

TEST(XmcEnums, FindTypeOfATypeName) {
    std::uint32_t e = 99;
    EXPECT_EQ(xmc_enum_c::find_type("Bool", e), 2u);
    EXPECT_EQ(e, 16u);
}

TEST(XmcEnums, FindTypeOfTypeItselfIsEnumOverTheEnumerationType) {
    std::uint32_t e = 99;
    EXPECT_EQ(xmc_enum_c::find_type("Type", e), 0u);
    EXPECT_EQ(e, 0u);
}

TEST(XmcEnums, FindTypeYieldsElevenForAny) {
    std::uint32_t e = 99;
    EXPECT_EQ(xmc_enum_c::find_type("Any", e), 11u);
    EXPECT_EQ(e, 16u);
    // A declared type that the value check refuses, whatever the text.
    for (const char* text : {"", "x", "Any", "1", "True"})
        EXPECT_FALSE(xmc_enum_c::data_fits_type(text, xmc_enum_c::find_type("Any", e), e, nullptr))
            << text;
}

TEST(XmcEnums, FindTypeOfNothingKnownIsTwelve) {
    std::uint32_t e = 99;
    EXPECT_EQ(xmc_enum_c::find_type("Strin", e), 12u);
    EXPECT_EQ(e, 16u);
    EXPECT_EQ(xmc_enum_c::find_type("", e), 12u);
    EXPECT_EQ(xmc_enum_c::find_type(nullptr, e), 12u);
    EXPECT_EQ(e, 16u);
}

// ---- objects ----------------------------------------------------------------------------------

TEST(XmcEnums, ObjectTagTableRows) {
    ASSERT_EQ(std::size(object_rows), 69u);
    for (std::uint32_t i = 0; i < 69; ++i) {
        SCOPED_TRACE(object_rows[i].name);
        EXPECT_EQ(object_tag_table[i].index, i);
        EXPECT_STREQ(object_tag_table[i].name, object_rows[i].name);
        EXPECT_EQ(object_tag_table[i].id, object_rows[i].id);
        ASSERT_LT(object_tag_table[i].papa, 69u);
        EXPECT_STREQ(object_tag_table[object_tag_table[i].papa].name, object_rows[i].papa);
    }
}

TEST(XmcEnums, ObjectRowsAreInHierarchyOrder) {
    for (std::uint32_t i = 0; i < 69; ++i) {
        if (i == 0 || i == 55)
            EXPECT_EQ(object_tag_table[i].papa, i);
        else
            EXPECT_LT(object_tag_table[i].papa, i) << object_tag_table[i].name;
    }
}

TEST(XmcEnums, ScenarioAndGroupAreTheTwoRoots) {
    EXPECT_EQ(row_of("Scenario"), 0u);
    EXPECT_EQ(row_of("Group"), 55u);
    EXPECT_EQ(object_tag_table[55].papa, 55u);
    for (const char* name : {"ReplNode", "SchedulerReplMode", "External", "SchedulerSysState"})
        EXPECT_EQ(object_tag_table[row_of(name)].papa, 0u) << name;
}

TEST(XmcEnums, MatchAllKidsVolumeHasARowBelowRootDir) {
    EXPECT_EQ(object_tag_table[row_of("MatchAllKidsVolume")].papa, row_of("RootDir"));
}

TEST(XmcEnums, ObjectsWhoseIdsAreNotCompared) {
    for (const char* name : {"Scenario", "ReplNode", "RootDir", "FileRegExpr", "DirRegExpr",
                             "DirPath", "MatchAllKidsVolume", "External"})
        EXPECT_EQ(object_tag_table[row_of(name)].id, 0u) << name;
    std::uint32_t zero = 0;
    for (const object_tag_s& row : object_tag_table) zero += row.id == 0 ? 1 : 0;
    EXPECT_EQ(zero, 8u);
}

TEST(XmcEnums, ObjectLookupByName) {
    EXPECT_EQ(row_of("TraficRedirection"), 3u);
    EXPECT_EQ(row_of("GroupReportScript"), 68u);
    EXPECT_EQ(row_of("NoSuchObject"), 69u);
    EXPECT_EQ(row_of(""), 69u);
    EXPECT_EQ(row_of(nullptr), 69u);
}

// ---- settings ---------------------------------------------------------------------------------

TEST(XmcEnums, ScenarioDataTableRows) {
    check_rows(scenario_data_table, expand(scenario_ranges),
               [](const scenario_data_s& r) { return r.fixed; });
}

TEST(XmcEnums, HostDataTableRows) {
    check_rows(host_data_table, expand(host_ranges),
               [](const host_data_s& r) { return r.manager; });
}

TEST(XmcEnums, GroupDataTableRows) {
    check_rows(group_data_table, expand(group_ranges),
               [](const scenario_data_s& r) { return r.fixed; });
}

TEST(XmcEnums, GroupScenarioDataTableRows) {
    check_rows(group_scenario_data_table, expand(group_scenario_ranges),
               [](const scenario_data_s& r) { return r.fixed; });
}

TEST(XmcEnums, GroupListTableRows) {
    const char* expected[][2] = {{"ScenarioInfo", "ScenarioList"},
                                 {"HostProps", "HostList"},
                                 {"ScenarioFailoverInfo", "FailoverScenarioList"},
                                 {"ScenarioRedundancySet", "ScenarioRedundancyList"},
                                 {"ScenarioDependencySet", "ScenarioDependencyList"}};
    for (std::uint32_t i = 0; i < 5; ++i) {
        EXPECT_EQ(group_list_table[i].index, i);
        EXPECT_STREQ(object_tag_table[group_list_table[i].object].name, expected[i][0]);
        EXPECT_STREQ(group_list_table[i].label, expected[i][1]);
    }
}

TEST(XmcEnums, VersionIsFixedAndSignatureIsNot) {
    auto scenario_row = [](const char* label) -> const scenario_data_s* {
        for (const scenario_data_s& r : scenario_data_table)
            if (r.object == 0 && std::strcmp(r.label, label) == 0) return &r;
        return nullptr;
    };
    ASSERT_NE(scenario_row("Version"), nullptr);
    EXPECT_EQ(scenario_row("Version")->fixed, 1);
    ASSERT_NE(scenario_row("Signature"), nullptr);
    EXPECT_EQ(scenario_row("Signature")->fixed, 0);
    EXPECT_STREQ(group_data_table[0].label, "GroupID");
    EXPECT_EQ(group_data_table[0].object, row_of("Group"));
    EXPECT_EQ(group_data_table[0].fixed, 1);
    EXPECT_STREQ(group_data_table[5].label, "Signature");
    EXPECT_EQ(group_data_table[5].object, row_of("Group"));
    EXPECT_EQ(group_data_table[5].fixed, 0);
}

namespace {

// The owning objects of the rows of a table that carry `label`, in row order.
template <class Row, std::size_t N>
std::vector<std::string> objects_with_label(const Row (&table)[N], const char* label) {
    std::vector<std::string> objects;
    for (const Row& r : table)
        if (std::strcmp(r.label, label) == 0) objects.push_back(object_tag_table[r.object].name);
    return objects;
}

bool all_different(std::vector<std::string> names) {
    std::sort(names.begin(), names.end());
    return std::adjacent_find(names.begin(), names.end()) == names.end();
}

} // namespace

TEST(XmcEnums, RepeatedLabelsAreToldApartByTheirObject) {
    const std::vector<std::string> scenario_scripts = {
        "ActiveToStandBy", "StandByToActive", "IdentifyTraffic", "OnActive",       "OnStandBy",
        "StopDB",          "StartDB",         "OnSuccessScript", "OnFailureScript"};
    const std::vector<std::string> host_scripts = {
        "SyncScriptBefore", "SyncScriptAfter", "TrigFileScript", "ReportScript",
        "EventNotifScript", "VFStartDBScript", "VFTestDBScript", "OnlineScript",
        "VFStopDBScript",   "OfflineScript",   "SuspendScript",  "SuspendOfflineScript"};
    const std::vector<std::string> group_scripts = {"GroupEventNotifScript", "GroupReportScript"};
    for (const char* label : {"Path", "Args", "DefaultArgs"}) {
        SCOPED_TRACE(label);
        EXPECT_EQ(objects_with_label(scenario_data_table, label), scenario_scripts);
        EXPECT_EQ(objects_with_label(host_data_table, label), host_scripts);
        EXPECT_EQ(objects_with_label(group_data_table, label), group_scripts);
    }
    std::vector<std::string> status = objects_with_label(scenario_data_table, "status");
    EXPECT_EQ(status.size(), 14u);
    EXPECT_TRUE(all_different(status));
    status = objects_with_label(host_data_table, "status");
    EXPECT_EQ(status.size(), 21u);
    EXPECT_TRUE(all_different(status));
    status = objects_with_label(group_data_table, "status");
    EXPECT_EQ(status.size(), 7u);
    EXPECT_TRUE(all_different(status));
    // Within one table the object column alone separates the rows of a label.
    for (const char* label : {"status", "Path", "Args", "DefaultArgs"}) {
        EXPECT_TRUE(all_different(objects_with_label(scenario_data_table, label))) << label;
        EXPECT_TRUE(all_different(objects_with_label(host_data_table, label))) << label;
    }
}

TEST(XmcEnums, RowsWithoutATemplateItemStay) {
    EXPECT_STREQ(scenario_data_table[85].label, "MonitorServiceListEdit");
    EXPECT_STREQ(host_data_table[34].label, "BandWidth");
}

TEST(XmcEnums, GroupHostDataTableIsCompletedAtStartUp) {
    ASSERT_TRUE(load_order_n::started());
    ASSERT_TRUE(group_host_data_table_complete());
    const char* labels[] = {"Host", "IP", "Port", "Index", "Role"};
    const std::uint32_t host_rows[] = {0, 1, 3, 4, 5};
    for (std::uint32_t i = 0; i < 5; ++i) {
        SCOPED_TRACE(labels[i]);
        const group_host_data_s& r = group_host_data_table[i];
        EXPECT_EQ(r.index, i);
        EXPECT_EQ(r.object, 57u);
        EXPECT_STREQ(r.label, labels[i]);
        EXPECT_EQ(r.host.index, host_rows[i]);
        EXPECT_EQ(r.host.object, host_data_table[host_rows[i]].object);
        EXPECT_STREQ(r.host.label, labels[i]);
        EXPECT_EQ(r.host.manager, 0);
        EXPECT_EQ(r.zero, 0u);
    }
}

TEST(XmcEnums, CompletingTheGroupHostTableAgainChangesNothing) {
    group_host_data_s before[5];
    std::copy(std::begin(group_host_data_table), std::end(group_host_data_table), before);
    complete_group_host_data_table();
    for (std::uint32_t i = 0; i < 5; ++i) {
        const group_host_data_s& r = group_host_data_table[i];
        EXPECT_EQ(r.index, before[i].index);
        EXPECT_EQ(r.object, before[i].object);
        EXPECT_EQ(r.label, before[i].label);
        EXPECT_EQ(r.host.index, before[i].host.index);
        EXPECT_EQ(r.host.object, before[i].host.object);
        EXPECT_EQ(r.host.label, before[i].host.label);
        EXPECT_EQ(r.host.manager, before[i].host.manager);
        EXPECT_EQ(r.zero, before[i].zero);
    }
}
