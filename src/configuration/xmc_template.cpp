// The built-in template, line by line. Every stored scenario uses its vocabulary, so its labels
// are kept letter for letter, misspellings included (`TraficRedirection`, `SytemDefined`,
// `ReciveryInterval`, `HavCluster`, `commnent`). Copies of a shared definition under `Scenario`
// and `Group` are written out in full, never referred to. The compiler proves the shape of the
// text below the array: a failed proof names the line (counted from 1) where it went wrong.
#include "configuration/xmc_template.h"

#include "configuration/xmc_enums.h"
#include "configuration/xmc_grammar.h"
#include "utl/utl_stream.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace xmc_template_n {

namespace {

constexpr line_array_s builtin_template = {
    {
        R"(<?xml version="1.0"?>)",
        R"(<object label="ConfigDataHolder" id="1">)",
        R"(  <data label="Version" val="5" type="Number"/>)",
        R"(  <definitions>)",
        // The enumerations, in the order of the code's table.
        R"(    <enums>)",
        R"(      <enum label="Type" val="Enum, Number, Bool, String, Text, FullPath, DefFullPath, IPAddr, IPAdrMask, Date, MultiEntry, Any">)",
        R"(        <commnent>Enum - an item of the corresponding enum; MultiEntry - a list of items, uses the field mandatory</commnent>)",
        R"(      </enum>)",
        R"(      <enum label="Product" val="Dr, Ha, Cd,Rw"/>)",
        R"(      <enum label="Application" val="FileServer, Exchange, Oracle, DB2, SQL, IIS, ControlService, HyperV, SharePoint, vCenter, CRM, FullSystem, CustomApp"/>)",
        R"(      <enum label="ConfigMode" val="Template, Regular, Synchron, Verific, Assessment, Recovery, Backward, Rewind"/>)",
        R"(      <enum label="ReplicationMode" val="Online, Scheduling,OnFileClose,Scheduled"/>)",
        R"(      <enum label="Bandwidth" val="56.0, 64.0, 128.0, 192.0, 256.0, 512.0, 1024.0, 1544.0, 2048.0, 4096.0, 10240.0, 20480.0, 30720.0, 40960.0, 102400.0, Unlimited"/>)",
        R"(      <enum label="HostTask" val="None, Manager, Master, Replica"/>)",
        R"(      <enum label="Schedule" val="ByUserRequest, WeeklyActivity"/>)",
        R"(      <enum label="SynchronizationType" val="FileSynchronization, BlockSynchronization, VolumeSynchronization"/>)",
        R"(      <enum label="GroupType" val="default_scenarios, default_templates, regular, distributed, customized"/>)",
        R"(      <enum label="VirtualHardDiskType" val="DynamicallyExpanding, FixSize"/>)",
        R"(      <enum label="VirtualPlatformType" val="HyperV, Esx, vSphere, Xen, EC2"/>)",
        R"(      <enum label="NumberOfSocketsType" val="Default, 1,5,10"/>)",
        R"(      <enum label="CloudProviderType" val="AmazonEC2"/>)",
        R"(      <enum label="CloudInstanceType" val="ec2_t1_micro, ec2_m1_small, ec2_m1_large, ec2_m1_xlarge, ec2_m2_xlarge, ec2_m2_2xlarge, ec2_m2_4xlarge, ec2_c1_medium, ec2_c1_xlarge, ec2_m1_medium, ec2_cc1_4xlarge, ec2_cc2_8xlarge, ec2_cg1_4xlarge, ec2_hi1_4xlarge"/>)",
        R"(      <enum label="SecureCommunicationLevel" val="0, 1, 2, 3"/>)",
        R"(    </enums>)",
        // The shared definitions: entry shapes of the lists, sources of default objects.
        R"(    <objects>)",
        R"(      <object label="ListRegistryPaths" id="250">)",
        R"(        <data label="RegistryPaths" val="Text" type="MultiEntry"/>)",
        R"(      </object>)",
        R"(      <object label="Script" id="300" status="True">)",
        R"(        <data label="Path" val="" type="FullPath"/>)",
        R"(        <data label="Args" val="" type="Text"/>)",
        R"(        <data label="DefaultArgs" val="" type="Text"/>)",
        R"(      </object>)",
        R"(      <object label="IOThrottler" id="350">)",
        R"(        <data label="23" val="0" type="Number"/>)",
        R"(      </object>)",
        R"(      <object label="BandwidthThrottler" id="350">)",
        R"(        <data label="23" val="0" type="Number"/>)",
        R"(      </object>)",
        R"(      <object label="Scheduler" id="400" status="True">)",
        R"(        <title label="WeekDays">)",
        R"(          <data label="Sun" val="" type="Text"/>)",
        R"(          <data label="Mon" val="" type="Text"/>)",
        R"(          <data label="Tue" val="" type="Text"/>)",
        R"(          <data label="Wed" val="" type="Text"/>)",
        R"(          <data label="Thu" val="" type="Text"/>)",
        R"(          <data label="Fri" val="" type="Text"/>)",
        R"(          <data label="Sat" val="" type="Text"/>)",
        R"(        </title>)",
        R"(        <data label="ExcludeDates" val="Date" type="MultiEntry"/>)",
        R"(      </object>)",
        R"(      <object label="RootDirFilter" id="500" status="True">)",
        R"(        <data label="ExcludeFilter" val="True" type="Bool"/>)",
        R"(        <data label="ListFilters" val="String" type="MultiEntry"/>)",
        R"(      </object>)",
        R"(      <object label="RootDir" id="3010">)",
        R"(        <data label="Path" val="" type="FullPath"/>)",
        R"(        <data label="ID" val="0" type="Number"/>)",
        R"(        <data label="MatchAllKidsVolume" val="True" type="Bool"/>)",
        R"(        <data label="DBdir" val="True" type="Bool">)",
        R"(          <switch_to_set_default variable="Application" case="FileServer" val="False" type="Bool"/>)",
        R"(          <switch_to_set_default variable="Application" case="FullSystem" val="False" type="Bool"/>)",
        R"(        </data>)",
        R"(        <object label="FileRegExpr" id="500" status="False">)",
        R"(          <data label="ExcludeFilter" val="True" type="Bool"/>)",
        R"(          <data label="ListFilters" val="String" type="MultiEntry"/>)",
        R"(        </object>)",
        R"(        <object label="DirRegExpr" id="500" status="False">)",
        R"(          <data label="ExcludeFilter" val="True" type="Bool"/>)",
        R"(          <data label="ListFilters" val="String" type="MultiEntry"/>)",
        R"(        </object>)",
        R"(        <object label="DirPath" id="500" status="False">)",
        R"(          <data label="ExcludeFilter" val="True" type="Bool"/>)",
        R"(          <data label="ListFilters" val="String" type="MultiEntry"/>)",
        R"(        </object>)",
        R"(      </object>)",
        R"(      <object label="NotifyByEmail" id="3620" status="False">)",
        R"(        <data label="OnErrorOnly" val="False" type="Bool"/>)",
        R"(        <data label="MailServer" val="" type="String"/>)",
        R"(        <data label="MailServerPort" val="25" type="Number"/>)",
        R"(        <data label="EmailAddressTo" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(        <data label="EmailAddressFrom" val="" type="String"/>)",
        R"(        <data label="MailAdvancedSettings" val="" type="Text"/>)",
        R"(      </object>)",
        R"(      <object label="Report" id="3500" status="True">)",
        R"(        <data label="SynchReportStatus" val="True" type="Bool" check_kids_if_val="True">)",
        R"(          <data label="SynchReportDetailed" val="True" type="Bool"/>)",
        R"(        </data>)",
        R"(        <data label="ReplReportStatus" val="True" type="Bool" check_kids_if_val="True">)",
        R"(          <data label="ReplReportTimeout" val="3600" type="Number"/>)",
        R"(          <data label="ReplReportDetailed" val="False" type="Bool"/>)",
        R"(        </data>)",
        R"(        <data label="VettedFailbackReportStatus" val="True" type="Bool">)",
        R"(          <relevant label="VettedFailback" val="True" type="Bool"/>)",
        R"(        </data>)",
        R"(        <title label="ReportsHandling">)",
        R"(          <data label="StoreReportOnThisHost" val="False" type="Bool" check_kids_if_val="True">)",
        R"(            <data label="ReportRetention" val="0" type="Number"/>)",
        R"(            <data label="OnThisHostReportDir" val="" type="DefFullPath"/>)",
        R"(          </data>)",
        R"(          <data label="Delegate" val="True" type="Bool"/>)",
        R"(          <object label="ReportNotifyEmail" id="3620" status="False">)",
        R"(            <data label="MailServer" val="" type="String"/>)",
        R"(            <data label="MailServerPort" val="25" type="Number"/>)",
        R"(            <data label="EmailAddressTo" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(            <data label="EmailAddressFrom" val="" type="String"/>)",
        R"(            <data label="MailAdvancedSettings" val="" type="Text"/>)",
        R"(          </object>)",
        R"(          <object label="ReportScript" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(        </title>)",
        R"(      </object>)",
        R"(      <object label="EventNotification" id="1120" status="True">)",
        R"(        <object label="NotifyByEmail" id="3620" status="False">)",
        R"(          <data label="OnErrorOnly" val="False" type="Bool"/>)",
        R"(          <data label="MailServer" val="" type="String"/>)",
        R"(          <data label="MailServerPort" val="25" type="Number"/>)",
        R"(          <data label="EmailAddressTo" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(          <data label="EmailAddressFrom" val="" type="String"/>)",
        R"(          <data label="MailAdvancedSettings" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <object label="EventNotifScript" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <data label="Syslog" val="False" type="Bool"/>)",
        R"(      </object>)",
        R"(      <object label="TriggerFile" id="4200" status="False">)",
        R"(        <data label="TargetFile" val="" type="String"/>)",
        R"(        <object label="TrigFileScript" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(      </object>)",
        R"(      <object label="VettedFailbackObj" id="4310" status="False">)",
        R"(        <relevant label="VettedFailback" val="True" type="Bool"/>)",
        R"(        <object label="SchedulerVF" id="400" status="False" prompted="True">)",
        R"(          <title label="WeekDays">)",
        R"(            <data label="Sun" val="" type="Text"/>)",
        R"(            <data label="Mon" val="" type="Text"/>)",
        R"(            <data label="Tue" val="" type="Text"/>)",
        R"(            <data label="Wed" val="" type="Text"/>)",
        R"(            <data label="Thu" val="" type="Text"/>)",
        R"(            <data label="Fri" val="" type="Text"/>)",
        R"(            <data label="Sat" val="" type="Text"/>)",
        R"(          </title>)",
        R"(          <data label="ExcludeDates" val="Date" type="MultiEntry"/>)",
        R"(        </object>)",
        R"(        <data label="StartDB" val="True" type="Bool">)",
        R"(          <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(          <data label="AutomaticStartDB" val="True" type="Bool"/>)",
        R"(          <object label="VFStartDBScript" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(        </data>)",
        R"(        <data label="DbTesting" val="True" type="Bool">)",
        R"(          <data label="AutomaticDbTest" val="True" type="Bool">)",
        R"(            <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(          </data>)",
        R"(          <object label="VFTestDBScript" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(        </data>)",
        R"(        <data label="SuccessActOnline" val="True" type="Bool">)",
        R"(          <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(          <object label="OnlineScript" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(        </data>)",
        R"(        <data label="StopDB" val="True" type="Bool">)",
        R"(          <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(          <data label="AutomaticStopDB" val="True" type="Bool"/>)",
        R"(          <object label="VFStopDBScript" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(        </data>)",
        R"(        <data label="SuccessActOffline" val="True" type="Bool" check_kids_if_val="True">)",
        R"(          <data label="ShadowCopy" val="False" type="Bool" check_kids_if_val="True">)",
        R"(            <data label="NumSnapsh" val="10" type="Number" minimum="1"/>)",
        R"(            <data label="Volume" val="" type="DefFullPath"/>)",
        R"(            <data label="StoreSize" val="0" type="Number"/>)",
        R"(          </data>)",
        R"(          <object label="OfflineScript" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(        </data>)",
        R"(      </object>)",
        R"(      <object label="Suspend" id="4400" status="False">)",
        R"(        <data label="OffLineShadowCopy" val="True" type="Bool"/>)",
        R"(        <data label="NumSnapsh" val="10" type="Number" minimum="1"/>)",
        R"(        <data label="Volume" val="" type="DefFullPath"/>)",
        R"(        <data label="StoreSize" val="0" type="Number"/>)",
        R"(        <object label="SuspendScheduler" id="400" status="False" prompted="True">)",
        R"(          <title label="WeekDays">)",
        R"(            <data label="Sun" val="" type="Text"/>)",
        R"(            <data label="Mon" val="" type="Text"/>)",
        R"(            <data label="Tue" val="" type="Text"/>)",
        R"(            <data label="Wed" val="" type="Text"/>)",
        R"(            <data label="Thu" val="" type="Text"/>)",
        R"(            <data label="Fri" val="" type="Text"/>)",
        R"(            <data label="Sat" val="" type="Text"/>)",
        R"(          </title>)",
        R"(          <data label="ExcludeDates" val="Date" type="MultiEntry"/>)",
        R"(        </object>)",
        R"(        <object label="SuspendScript" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <object label="SuspendOfflineScript" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(      </object>)",
        R"(      <title label="VSM">)",
        R"(        <data label="Number" val="10" type="Number" minimum="1"/>)",
        R"(        <data label="Storage" val="" type="DefFullPath"/>)",
        R"(        <data label="StorageSize" val="1073741824" type="Number"/>)",
        R"(      </title>)",
        R"(      <object label="ReplicaScheduledTask" id="4300">)",
        R"(        <object label="VettedFailbackObj" id="4310" status="False">)",
        R"(          <relevant label="VettedFailback" val="True" type="Bool"/>)",
        R"(          <object label="SchedulerVF" id="400" status="False" prompted="True">)",
        R"(            <title label="WeekDays">)",
        R"(              <data label="Sun" val="" type="Text"/>)",
        R"(              <data label="Mon" val="" type="Text"/>)",
        R"(              <data label="Tue" val="" type="Text"/>)",
        R"(              <data label="Wed" val="" type="Text"/>)",
        R"(              <data label="Thu" val="" type="Text"/>)",
        R"(              <data label="Fri" val="" type="Text"/>)",
        R"(              <data label="Sat" val="" type="Text"/>)",
        R"(            </title>)",
        R"(            <data label="ExcludeDates" val="Date" type="MultiEntry"/>)",
        R"(          </object>)",
        R"(          <data label="StartDB" val="True" type="Bool">)",
        R"(            <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(            <data label="AutomaticStartDB" val="True" type="Bool"/>)",
        R"(            <object label="VFStartDBScript" id="300" status="False">)",
        R"(              <data label="Path" val="" type="FullPath"/>)",
        R"(              <data label="Args" val="" type="Text"/>)",
        R"(              <data label="DefaultArgs" val="" type="Text"/>)",
        R"(            </object>)",
        R"(          </data>)",
        R"(          <data label="DbTesting" val="True" type="Bool">)",
        R"(            <data label="AutomaticDbTest" val="True" type="Bool">)",
        R"(              <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(            </data>)",
        R"(            <object label="VFTestDBScript" id="300" status="False">)",
        R"(              <data label="Path" val="" type="FullPath"/>)",
        R"(              <data label="Args" val="" type="Text"/>)",
        R"(              <data label="DefaultArgs" val="" type="Text"/>)",
        R"(            </object>)",
        R"(          </data>)",
        R"(          <data label="SuccessActOnline" val="True" type="Bool">)",
        R"(            <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(            <object label="OnlineScript" id="300" status="False">)",
        R"(              <data label="Path" val="" type="FullPath"/>)",
        R"(              <data label="Args" val="" type="Text"/>)",
        R"(              <data label="DefaultArgs" val="" type="Text"/>)",
        R"(            </object>)",
        R"(          </data>)",
        R"(          <data label="StopDB" val="True" type="Bool">)",
        R"(            <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(            <data label="AutomaticStopDB" val="True" type="Bool"/>)",
        R"(            <object label="VFStopDBScript" id="300" status="False">)",
        R"(              <data label="Path" val="" type="FullPath"/>)",
        R"(              <data label="Args" val="" type="Text"/>)",
        R"(              <data label="DefaultArgs" val="" type="Text"/>)",
        R"(            </object>)",
        R"(          </data>)",
        R"(          <data label="SuccessActOffline" val="True" type="Bool" check_kids_if_val="True">)",
        R"(            <data label="ShadowCopy" val="False" type="Bool" check_kids_if_val="True">)",
        R"(              <data label="NumSnapsh" val="10" type="Number" minimum="1"/>)",
        R"(              <data label="Volume" val="" type="DefFullPath"/>)",
        R"(              <data label="StoreSize" val="0" type="Number"/>)",
        R"(            </data>)",
        R"(            <object label="OfflineScript" id="300" status="False">)",
        R"(              <data label="Path" val="" type="FullPath"/>)",
        R"(              <data label="Args" val="" type="Text"/>)",
        R"(              <data label="DefaultArgs" val="" type="Text"/>)",
        R"(            </object>)",
        R"(          </data>)",
        R"(        </object>)",
        R"(        <object label="Suspend" id="4400" status="False">)",
        R"(          <data label="OffLineShadowCopy" val="True" type="Bool"/>)",
        R"(          <data label="NumSnapsh" val="10" type="Number" minimum="1"/>)",
        R"(          <data label="Volume" val="" type="DefFullPath"/>)",
        R"(          <data label="StoreSize" val="0" type="Number"/>)",
        R"(          <object label="SuspendScheduler" id="400" status="False" prompted="True">)",
        R"(            <title label="WeekDays">)",
        R"(              <data label="Sun" val="" type="Text"/>)",
        R"(              <data label="Mon" val="" type="Text"/>)",
        R"(              <data label="Tue" val="" type="Text"/>)",
        R"(              <data label="Wed" val="" type="Text"/>)",
        R"(              <data label="Thu" val="" type="Text"/>)",
        R"(              <data label="Fri" val="" type="Text"/>)",
        R"(              <data label="Sat" val="" type="Text"/>)",
        R"(            </title>)",
        R"(            <data label="ExcludeDates" val="Date" type="MultiEntry"/>)",
        R"(          </object>)",
        R"(          <object label="SuspendScript" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(          <object label="SuspendOfflineScript" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(        </object>)",
        R"(      </object>)",
        R"(      <object label="RedirectDNS" id="4700" status="True">)",
        R"(        <switch_to_set_default variable="Application" case="HyperV" val="False" type="Bool"/>)",
        R"(        <switch_to_set_default variable="Application" case="FullSystem" val="False" type="Bool"/>)",
        R"(        <data label="DNS_ServerIPs" val="IPAddr" type="MultiEntry" mandatory="True"/>)",
        R"(        <data label="DNS_TTL" val="60" type="Number"/>)",
        R"(        <data label="AD_Integrated" val="True" type="Bool">)",
        R"(          <data label="DNS_KeyFilename" val="" type="DefFullPath"/>)",
        R"(        </data>)",
        R"(        <data label="DNS_Scavenging" val="True" type="Bool"/>)",
        R"(        <data label="MasterIPinDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(          <irrelevant label="Application" val="HyperV" type="Application"/>)",
        R"(        </data>)",
        R"(        <data label="ReplicaIPinDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(          <irrelevant label="Application" val="HyperV, FullSystem" type="Application"/>)",
        R"(        </data>)",
        R"(        <data label="VirtualMachineIPOnMasterinDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(          <relevant label="Application" val="HyperV" type="Application"/>)",
        R"(        </data>)",
        R"(        <data label="VirtualMachineIPOnReplicainDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(          <relevant label="Application" val="HyperV, FullSystem" type="Application"/>)",
        R"(        </data>)",
        R"(        <data label="DomainAdminName" val="" type="Text">)",
        R"(          <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(        </data>)",
        R"(        <data label="DomainAdminPassword" val="" type="Text">)",
        R"(          <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(        </data>)",
        R"(      </object>)",
        R"(      <object label="SwitchCompName" id="4770" status="False">)",
        R"(        <switch_to_set_default variable="Application" case="FileServer" val="True" type="Bool"/>)",
        R"(        <data label="MasterCompName" val="" type="String"/>)",
        R"(        <data label="ReplicaCompName" val="" type="String"/>)",
        R"(        <data label="WithReboot" val="True" type="Bool">)",
        R"(          <switch_to_set_default variable="Application" case="FileServer" val="False" type="Bool"/>)",
        R"(        </data>)",
        R"(        <data label="UseAlias" val="False" type="Bool"/>)",
        R"(      </object>)",
        R"(      <object label="TraficRedirection" id="4600" status="True">)",
        R"(        <data label="MoveIP" val="False" type="Bool" check_kids_if_val="True">)",
        R"(          <data label="IPMask" val="IPAdrMask" type="MultiEntry" mandatory="True"/>)",
        R"(        </data>)",
        R"(        <object label="RedirectDNS" id="4700" status="True">)",
        R"(          <switch_to_set_default variable="Application" case="HyperV" val="False" type="Bool"/>)",
        R"(          <switch_to_set_default variable="Application" case="FullSystem" val="False" type="Bool"/>)",
        R"(          <data label="DNS_ServerIPs" val="IPAddr" type="MultiEntry" mandatory="True"/>)",
        R"(          <data label="DNS_TTL" val="60" type="Number"/>)",
        R"(          <data label="AD_Integrated" val="True" type="Bool">)",
        R"(            <data label="DNS_KeyFilename" val="" type="DefFullPath"/>)",
        R"(          </data>)",
        R"(          <data label="DNS_Scavenging" val="True" type="Bool"/>)",
        R"(          <data label="MasterIPinDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(            <irrelevant label="Application" val="HyperV" type="Application"/>)",
        R"(          </data>)",
        R"(          <data label="ReplicaIPinDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(            <irrelevant label="Application" val="HyperV, FullSystem" type="Application"/>)",
        R"(          </data>)",
        R"(          <data label="VirtualMachineIPOnMasterinDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(            <relevant label="Application" val="HyperV" type="Application"/>)",
        R"(          </data>)",
        R"(          <data label="VirtualMachineIPOnReplicainDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(            <relevant label="Application" val="HyperV, FullSystem" type="Application"/>)",
        R"(          </data>)",
        R"(          <data label="DomainAdminName" val="" type="Text">)",
        R"(            <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(          </data>)",
        R"(          <data label="DomainAdminPassword" val="" type="Text">)",
        R"(            <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(          </data>)",
        R"(        </object>)",
        R"(        <object label="SwitchCompName" id="4770" status="False">)",
        R"(          <switch_to_set_default variable="Application" case="FileServer" val="True" type="Bool"/>)",
        R"(          <data label="MasterCompName" val="" type="String"/>)",
        R"(          <data label="ReplicaCompName" val="" type="String"/>)",
        R"(          <data label="WithReboot" val="True" type="Bool">)",
        R"(            <switch_to_set_default variable="Application" case="FileServer" val="False" type="Bool"/>)",
        R"(          </data>)",
        R"(          <data label="UseAlias" val="False" type="Bool"/>)",
        R"(        </object>)",
        R"(        <data label="SwitchAlias" val="False" type="Bool" check_kids_if_val="True">)",
        R"(          <data label="AliasInfo" val="" type="Text"/>)",
        R"(          <data label="AliasName" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(        </data>)",
        R"(        <object label="ActiveToStandBy" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <object label="StandByToActive" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <object label="IdentifyTraffic" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(      </object>)",
        R"(      <object label="VirtualNetworkMapping" id="4450">)",
        R"(        <data label="VirtualMachineUUID" val="" type="String"/>)",
        R"(        <data label="MasterVirtualNetworkName" val="" type="String"/>)",
        R"(        <data label="MasterVirtualNetworkUUID" val="" type="String"/>)",
        R"(        <data label="ReplicaVirtualNetworkName" val="" type="String"/>)",
        R"(        <data label="ReplicaVirtualNetworkUUID" val="" type="String"/>)",
        R"(        <data label="ApplySourceAdapterSetting" val="true" type="Bool"/>)",
        R"(        <data label="UseDHCP" val="false" type="Bool"/>)",
        R"(        <data label="MacAddress" val="00:0C:29:CE:59:04" type="String"/>)",
        R"(        <data label="WinsPrimary" val="192.0.2.9" type="Text"/>)",
        R"(        <data label="WinsSecondary" val="" type="Text"/>)",
        R"(        <data label="IPs" val="IPAddr" type="MultiEntry" mandatory="True"/>)",
        R"(        <data label="Subnets" val="IPAddr" type="MultiEntry" mandatory="True"/>)",
        R"(        <data label="Gateways" val="IPAddr" type="MultiEntry" mandatory="True"/>)",
        R"(        <data label="DNS" val="IPAddr" type="MultiEntry" mandatory="True"/>)",
        R"(      </object>)",
        R"(      <object label="Switchover" id="4500" status="True">)",
        R"(        <data label="HostName" val="" type="String"/>)",
        R"(        <data label="VirtualNetworkMappingsEdit" val="" type="Text"/>)",
        R"(        <data label="ListVirtualNetworkMappings" val="4450" type="MultiEntry">)",
        R"(          <object label="VirtualNetworkMapping" id="4450">)",
        R"(            <data label="VirtualMachineUUID" val="" type="String"/>)",
        R"(            <data label="MasterVirtualNetworkName" val="" type="String"/>)",
        R"(            <data label="MasterVirtualNetworkUUID" val="" type="String"/>)",
        R"(            <data label="ReplicaVirtualNetworkName" val="" type="String"/>)",
        R"(            <data label="ReplicaVirtualNetworkUUID" val="" type="String"/>)",
        R"(            <data label="ApplySourceAdapterSetting" val="true" type="Bool"/>)",
        R"(            <data label="UseDHCP" val="false" type="Bool"/>)",
        R"(            <data label="MacAddress" val="00:0C:29:CE:59:04" type="Text"/>)",
        R"(            <data label="WinsPrimary" val="192.0.2.9" type="Text"/>)",
        R"(            <data label="WinsSecondary" val="" type="Text"/>)",
        R"(            <data label="IPs" val="IPAddr" type="MultiEntry" mandatory="True"/>)",
        R"(            <data label="Subnets" val="IPAddr" type="MultiEntry" mandatory="True"/>)",
        R"(            <data label="Gateways" val="IPAddr" type="MultiEntry" mandatory="True"/>)",
        R"(            <data label="DNS" val="IPAddr" type="MultiEntry" mandatory="True"/>)",
        R"(          </object>)",
        R"(        </data>)",
        R"(        <data label="PerformAutomatically" val="False" type="Bool">)",
        R"(          <switch_to_set_default variable="Application" case="ControlService" val="True" type="Bool"/>)",
        R"(        </data>)",
        R"(        <data label="RunReverse" val="False" type="Bool">)",
        R"(          <switch_to_set_default variable="Application" case="ControlService" val="True" type="Bool"/>)",
        R"(        </data>)",
        R"(        <title label="hosts">)",
        R"(          <data label="MasterFQName" val="" type="String"/>)",
        R"(          <data label="ReplicaFQName" val="" type="String"/>)",
        R"(          <data label="VirtualMachineFQName" val="" type="String">)",
        R"(            <relevant label="Application" val="HyperV" type="Application"/>)",
        R"(          </data>)",
        R"(        </title>)",
        R"(        <object label="TraficRedirection" id="4600" status="True">)",
        R"(          <data label="MoveIP" val="False" type="Bool" check_kids_if_val="True">)",
        R"(            <data label="IPMask" val="IPAdrMask" type="MultiEntry" mandatory="True"/>)",
        R"(          </data>)",
        R"(          <object label="RedirectDNS" id="4700" status="True">)",
        R"(            <switch_to_set_default variable="Application" case="HyperV" val="False" type="Bool"/>)",
        R"(            <switch_to_set_default variable="Application" case="FullSystem" val="False" type="Bool"/>)",
        R"(            <data label="DNS_ServerIPs" val="IPAddr" type="MultiEntry" mandatory="True"/>)",
        R"(            <data label="DNS_TTL" val="60" type="Number"/>)",
        R"(            <data label="AD_Integrated" val="True" type="Bool">)",
        R"(              <data label="DNS_KeyFilename" val="" type="DefFullPath"/>)",
        R"(            </data>)",
        R"(            <data label="DNS_Scavenging" val="True" type="Bool"/>)",
        R"(            <data label="MasterIPinDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(              <irrelevant label="Application" val="HyperV" type="Application"/>)",
        R"(            </data>)",
        R"(            <data label="ReplicaIPinDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(              <irrelevant label="Application" val="HyperV, FullSystem" type="Application"/>)",
        R"(            </data>)",
        R"(            <data label="VirtualMachineIPOnMasterinDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(              <relevant label="Application" val="HyperV" type="Application"/>)",
        R"(            </data>)",
        R"(            <data label="VirtualMachineIPOnReplicainDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(              <relevant label="Application" val="HyperV, FullSystem" type="Application"/>)",
        R"(            </data>)",
        R"(            <data label="DomainAdminName" val="" type="Text">)",
        R"(              <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(            </data>)",
        R"(            <data label="DomainAdminPassword" val="" type="Text">)",
        R"(              <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(            </data>)",
        R"(          </object>)",
        R"(          <object label="SwitchCompName" id="4770" status="False">)",
        R"(            <switch_to_set_default variable="Application" case="FileServer" val="True" type="Bool"/>)",
        R"(            <data label="MasterCompName" val="" type="String"/>)",
        R"(            <data label="ReplicaCompName" val="" type="String"/>)",
        R"(            <data label="WithReboot" val="True" type="Bool">)",
        R"(              <switch_to_set_default variable="Application" case="FileServer" val="False" type="Bool"/>)",
        R"(            </data>)",
        R"(            <data label="UseAlias" val="False" type="Bool"/>)",
        R"(          </object>)",
        R"(          <data label="SwitchAlias" val="False" type="Bool" check_kids_if_val="True">)",
        R"(            <data label="AliasInfo" val="" type="Text"/>)",
        R"(            <data label="AliasName" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(          </data>)",
        R"(          <object label="ActiveToStandBy" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(          <object label="StandByToActive" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(          <object label="IdentifyTraffic" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(          <data label="DisableMasterNetworkAdapters" val="True" type="Bool"/>)",
        R"(        </object>)",
        R"(        <title label="is_alive">)",
        R"(          <data label="IsAliveTimeout" val="300" type="Number" minimum="10"/>)",
        R"(          <data label="HeartbeatTimeout" val="30" type="Number" minimum="3" maximum="86400"/>)",
        R"(          <title label="CheckWith">)",
        R"(            <data label="SendPing" val="True" type="Bool" check_kids_if_val="True">)",
        R"(              <data label="PingIP" val="0.0.0.0" type="IPAddr" check_if="TraficRedirection.MoveIP" is_equal="True"/>)",
        R"(              <data label="FromMasterPingIP" val="0.0.0.0" type="IPAddr" check_if="TraficRedirection.MoveIP" is_equal="False"/>)",
        R"(              <data label="FromReplicaPingIP" val="0.0.0.0" type="IPAddr" check_if="TraficRedirection.MoveIP" is_equal="False"/>)",
        R"(            </data>)",
        R"(            <data label="ConnectToDB" val="True" type="Bool">)",
        R"(              <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(            </data>)",
        R"(            <object label="OnActive" id="300" status="False">)",
        R"(              <data label="Path" val="" type="FullPath"/>)",
        R"(              <data label="Args" val="" type="Text"/>)",
        R"(              <data label="DefaultArgs" val="" type="Text"/>)",
        R"(            </object>)",
        R"(            <object label="OnStandBy" id="300" status="False">)",
        R"(              <data label="Path" val="" type="FullPath"/>)",
        R"(              <data label="Args" val="" type="Text"/>)",
        R"(              <data label="DefaultArgs" val="" type="Text"/>)",
        R"(            </object>)",
        R"(          </title>)",
        R"(        </title>)",
        R"(        <title label="DBManagement">)",
        R"(          <data label="Automatic" val="True" type="Bool" prompted="True"/>)",
        R"(          <object label="StopDB" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(          <object label="StartDB" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(        </title>)",
        R"(        <title label="VirtualMachine">)",
        R"(          <data label="VirtualNetworkMappingsEdit" val="" type="Text"/>)",
        R"(          <data label="VirtualNetworkMappingsEditSwitchover" val="" type="Text"/>)",
        R"(        </title>)",
        R"(        <object label="OnSuccessScript" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <object label="OnFailureScript" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <data label="vCenterManagedIP" val="" type="Text"/>)",
        R"(      </object>)",
        R"(      <object label="ScenarioInfo" id="8010">)",
        R"(        <data label="ScenarioID" val="0" type="Number"/>)",
        R"(        <data label="DescendantID" val="0" type="Number"/>)",
        R"(        <data label="HostList" val="8020" type="MultiEntry" mandatory="True">)",
        R"(          <object label="HostProps" id="8020">)",
        R"(            <data label="Host" val="" type="String"/>)",
        R"(            <data label="IP" val="0.0.0.0" type="IPAddr"/>)",
        R"(            <data label="Data_IP" val="0.0.0.0" type="IPAddr"/>)",
        R"(            <data label="Port" val="25000" type="Number"/>)",
        R"(            <data label="Index" val="1" type="Number"/>)",
        R"(            <data label="Role" val="Master" type="HostTask"/>)",
        R"(          </object>)",
        R"(          <object label="HostProps" id="8020">)",
        R"(            <data label="Host" val="" type="String"/>)",
        R"(            <data label="IP" val="0.0.0.0" type="IPAddr"/>)",
        R"(            <data label="Data_IP" val="0.0.0.0" type="IPAddr"/>)",
        R"(            <data label="Port" val="25000" type="Number"/>)",
        R"(            <data label="Index" val="2" type="Number"/>)",
        R"(            <data label="Role" val="Replica" type="HostTask"/>)",
        R"(          </object>)",
        R"(        </data>)",
        R"(      </object>)",
        R"(      <object label="ScenarioFailoverInfo" id="8050">)",
        R"(        <data label="ScenarioID" val="0" type="Number"/>)",
        R"(        <data label="IsPrimary" val="True" type="Bool"/>)",
        R"(      </object>)",
        R"(      <object label="ScenarioDependencySet" id="8070">)",
        R"(        <data label="ScenarioID" val="0" type="Number"/>)",
        R"(        <data label="DependencyScenID" val="Number" type="MultiEntry"/>)",
        R"(      </object>)",
        R"(      <object label="ScenarioRedundancySet" id="8060">)",
        R"(        <data label="RedundancyName" val="" type="String"/>)",
        R"(        <data label="RedundancyScenID" val="Number" type="MultiEntry"/>)",
        R"(      </object>)",
        R"(      <object label="MonitorService" id="5500">)",
        R"(        <data label="ServiceName" val="" type="String"/>)",
        R"(      </object>)",
        R"(      <object label="MonitorBackupVM" id="8080">)",
        R"(        <data label="VMInstanceUUID" val="" type="String"/>)",
        R"(      </object>)",
        R"(    </objects>)",
        R"(  </definitions>)",
        // The model of one scenario.
        R"(  <object label="Scenario" id="1000">)",
        R"(    <data label="Application" val="variable" type="Application"/>)",
        R"(    <data label="Product" val="variable" type="Product"/>)",
        R"(    <data label="VettedFailback" val="variable" type="Bool"/>)",
        R"(    <data label="ConfigMode" val="Regular" type="ConfigMode"/>)",
        R"(    <data label="ScenarioID" val="0" type="Number"/>)",
        R"(    <data label="GroupID" val="0" type="Number"/>)",
        R"(    <data label="XMC_VersionNumber" val="164" type="Number"/>)",
        R"(    <data label="ScenarioName" val="" type="String"/>)",
        R"(    <data label="ScenarioComment" val="" type="Text"/>)",
        R"(    <data label="AutoStartVMAfterRestore" val="False" type="Bool"/>)",
        R"(    <data label="RecoveryP2VSnapshot" val="" type="Text"/>)",
        R"(    <data label="SystemStateRecovery" val="False" type="Bool"/>)",
        R"(    <data label="IsBMRRestore" val="False" type="Bool"/>)",
        R"(    <data label="IsP2P" val="False" type="Bool"/>)",
        R"(    <data label="P2VApplianceHost" val="" type="Text"/>)",
        R"(    <data label="P2VAppliancePort" val="0" type="Number"/>)",
        R"(    <data label="SystemStateProtection" val="False" type="Bool">)",
        R"(      <object label="SchedulerSysState" id="400" status="True">)",
        R"(        <title label="WeekDays">)",
        R"(          <data label="Sun" val="0:00" type="Text"/>)",
        R"(          <data label="Mon" val="0:00" type="Text"/>)",
        R"(          <data label="Tue" val="0:00" type="Text"/>)",
        R"(          <data label="Wed" val="0:00" type="Text"/>)",
        R"(          <data label="Thu" val="0:00" type="Text"/>)",
        R"(          <data label="Fri" val="0:00" type="Text"/>)",
        R"(          <data label="Sat" val="0:00" type="Text"/>)",
        R"(        </title>)",
        R"(        <data label="ExcludeDates" val="Date" type="MultiEntry"/>)",
        R"(      </object>)",
        R"(      <data label="DeleteSnapshotsScenario" val="False" type="Bool"/>)",
        R"(      <data label="DefaultReplSpoolSpace" val="0" type="Number"/>)",
        R"(    </data>)",
        R"(    <data label="DescendantID" val="0" type="Number">)",
        R"(      <relevant label="Product" val="Ha" type="Product"/>)",
        R"(    </data>)",
        R"(    <data label="IsForward" val="True" type="Bool">)",
        R"(      <relevant label="Product" val="Ha" type="Product"/>)",
        R"(    </data>)",
        R"(    <data label="IsCDPScenario" val="False" type="Bool">)",
        R"(      <data label="CDPRunTimeout" val="900" type="Number"/>)",
        R"(    </data>)",
        R"(    <data label="QuillonIntegrated" val="False" type="Bool" check_kids_if_val="True">)",
        R"(      <data label="QuillonName" val="" type="String"/>)",
        R"(    </data>)",
        R"(    <data label="QuillonVexIntegrated" val="False" type="Bool" check_kids_if_val="True">)",
        R"(      <data label="QuillonVexName" val="" type="Text"/>)",
        R"(    </data>)",
        R"(    <data label="QuillonCntrlAppIntegrated" val="False" type="Bool" check_kids_if_val="True">)",
        R"(      <data label="QuillonCntrlAppName" val="" type="Text"/>)",
        R"(      <data label="QuillonCntrlAppUser" val="" type="String"/>)",
        R"(      <data label="QuillonCntrlAppPass" val="" type="String"/>)",
        R"(      <data label="ParentRootDirChecked" val="" type="Text"/>)",
        R"(      <data label="QuillonCntrlAppUserUUID" val="" type="Text"/>)",
        R"(      <data label="ListMonitorBackupVM" val="8080" type="MultiEntry"/>)",
        R"(    </data>)",
        R"(    <data label="RegistrySynchronization" val="False" type="Bool" check_kids_if_val="True">)",
        R"(      <irrelevant label="Application" val="FullSystem" type="Application"/>)",
        R"(      <data label="Interval" val="1" type="Number" minimum="1"/>)",
        R"(    </data>)",
        R"(    <data label="RecoveryNodeID" val="0" type="Number"/>)",
        R"(    <data label="OriginalID" val="0" type="Number"/>)",
        R"(    <data label="Signature" val="0" type="Number"/>)",
        R"(    <data label="Version" val="5.0" type="String"/>)",
        R"(    <data label="TemplateID" val="0" type="Number"/>)",
        R"(    <data label="ListMonitorServices" val="5500" type="MultiEntry"/>)",
        R"(    <object label="Switchover" id="4500" status="True">)",
        R"(      <relevant label="Product" val="Ha" type="Product"/>)",
        R"(      <data label="HostName" val="" type="String"/>)",
        R"(      <data label="VirtualNetworkMappingsEdit" val="" type="Text"/>)",
        R"(      <data label="ListVirtualNetworkMappings" val="4450" type="MultiEntry"/>)",
        R"(      <data label="PerformAutomatically" val="False" type="Bool">)",
        R"(        <switch_to_set_default variable="Application" case="ControlService" val="True" type="Bool"/>)",
        R"(      </data>)",
        R"(      <data label="RunReverse" val="False" type="Bool">)",
        R"(        <switch_to_set_default variable="Application" case="ControlService" val="True" type="Bool"/>)",
        R"(      </data>)",
        R"(      <title label="hosts">)",
        R"(        <data label="MasterFQName" val="" type="String"/>)",
        R"(        <data label="ReplicaFQName" val="" type="String"/>)",
        R"(        <data label="VirtualMachineFQName" val="" type="String">)",
        R"(          <relevant label="Application" val="HyperV" type="Application"/>)",
        R"(        </data>)",
        R"(      </title>)",
        R"(      <object label="TraficRedirection" id="4600" status="True">)",
        R"(        <data label="MoveIP" val="False" type="Bool" check_kids_if_val="True">)",
        R"(          <data label="IPMask" val="IPAdrMask" type="MultiEntry" mandatory="True"/>)",
        R"(        </data>)",
        R"(        <object label="RedirectDNS" id="4700" status="True">)",
        R"(          <switch_to_set_default variable="Application" case="HyperV" val="False" type="Bool"/>)",
        R"(          <switch_to_set_default variable="Application" case="FullSystem" val="False" type="Bool"/>)",
        R"(          <data label="DNS_ServerIPs" val="IPAddr" type="MultiEntry" mandatory="True"/>)",
        R"(          <data label="DNS_TTL" val="60" type="Number"/>)",
        R"(          <data label="AD_Integrated" val="True" type="Bool">)",
        R"(            <data label="DNS_KeyFilename" val="" type="DefFullPath"/>)",
        R"(          </data>)",
        R"(          <data label="DNS_Scavenging" val="True" type="Bool"/>)",
        R"(          <data label="MasterIPinDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(            <irrelevant label="Application" val="HyperV" type="Application"/>)",
        R"(          </data>)",
        R"(          <data label="ReplicaIPinDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(            <irrelevant label="Application" val="HyperV, FullSystem" type="Application"/>)",
        R"(          </data>)",
        R"(          <data label="VirtualMachineIPOnMasterinDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(            <relevant label="Application" val="HyperV" type="Application"/>)",
        R"(          </data>)",
        R"(          <data label="VirtualMachineIPOnReplicainDNS" val="IPAddr" type="MultiEntry" mandatory="True">)",
        R"(            <relevant label="Application" val="HyperV, FullSystem" type="Application"/>)",
        R"(          </data>)",
        R"(          <data label="DomainAdminName" val="" type="Text">)",
        R"(            <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(          </data>)",
        R"(          <data label="DomainAdminPassword" val="" type="Text">)",
        R"(            <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(          </data>)",
        R"(        </object>)",
        R"(        <object label="SwitchCompName" id="4770" status="False">)",
        R"(          <switch_to_set_default variable="Application" case="FileServer" val="True" type="Bool"/>)",
        R"(          <data label="MasterCompName" val="" type="String"/>)",
        R"(          <data label="ReplicaCompName" val="" type="String"/>)",
        R"(          <data label="WithReboot" val="True" type="Bool">)",
        R"(            <switch_to_set_default variable="Application" case="FileServer" val="False" type="Bool"/>)",
        R"(          </data>)",
        R"(          <data label="UseAlias" val="False" type="Bool"/>)",
        R"(        </object>)",
        R"(        <data label="SwitchAlias" val="False" type="Bool" check_kids_if_val="True">)",
        R"(          <data label="AliasInfo" val="" type="Text"/>)",
        R"(          <data label="AliasName" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(        </data>)",
        R"(        <object label="ActiveToStandBy" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <object label="StandByToActive" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <object label="IdentifyTraffic" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <data label="DisableMasterNetworkAdapters" val="True" type="Bool"/>)",
        R"(      </object>)",
        R"(      <title label="is_alive">)",
        R"(        <data label="IsAliveTimeout" val="300" type="Number" minimum="10"/>)",
        R"(        <data label="HeartbeatTimeout" val="30" type="Number" minimum="3" maximum="86400"/>)",
        R"(        <title label="CheckWith">)",
        R"(          <data label="SendPing" val="True" type="Bool" check_kids_if_val="True">)",
        R"(            <data label="PingIP" val="0.0.0.0" type="IPAddr" check_if="TraficRedirection.MoveIP" is_equal="True"/>)",
        R"(            <data label="FromMasterPingIP" val="0.0.0.0" type="IPAddr" check_if="TraficRedirection.MoveIP" is_equal="False"/>)",
        R"(            <data label="FromReplicaPingIP" val="0.0.0.0" type="IPAddr" check_if="TraficRedirection.MoveIP" is_equal="False"/>)",
        R"(          </data>)",
        R"(          <data label="ConnectToDB" val="True" type="Bool">)",
        R"(            <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(          </data>)",
        R"(          <object label="OnActive" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(          <object label="OnStandBy" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(        </title>)",
        R"(      </title>)",
        R"(      <title label="DBManagement">)",
        R"(        <data label="Automatic" val="True" type="Bool" prompted="True"/>)",
        R"(        <object label="StopDB" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <object label="StartDB" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(      </title>)",
        R"(      <title label="VirtualMachine">)",
        R"(        <data label="VirtualNetworkMappingsEdit" val="" type="Text"/>)",
        R"(        <data label="VirtualNetworkMappingsEditSwitchover" val="" type="Text"/>)",
        R"(      </title>)",
        R"(      <object label="OnSuccessScript" id="300" status="False">)",
        R"(        <data label="Path" val="" type="FullPath"/>)",
        R"(        <data label="Args" val="" type="Text"/>)",
        R"(        <data label="DefaultArgs" val="" type="Text"/>)",
        R"(      </object>)",
        R"(      <object label="OnFailureScript" id="300" status="False">)",
        R"(        <data label="Path" val="" type="FullPath"/>)",
        R"(        <data label="Args" val="" type="Text"/>)",
        R"(        <data label="DefaultArgs" val="" type="Text"/>)",
        R"(      </object>)",
        R"(      <data label="vCenterManagedIP" val="" type="Text"/>)",
        R"(    </object>)",
        R"(    <data label="ReplicationMode" val="Online" type="ReplicationMode" prompted="True">)",
        R"(      <data label="SyncWithReplacement" val="False" type="Bool"/>)",
        R"(      <data label="Scheduling" val="WeeklyActivity" type="Schedule" check_kids_if_val="WeeklyActivity">)",
        R"(        <object label="SchedulerReplMode" id="400" status="False">)",
        R"(          <title label="WeekDays">)",
        R"(            <data label="Sun" val="" type="Text"/>)",
        R"(            <data label="Mon" val="" type="Text"/>)",
        R"(            <data label="Tue" val="" type="Text"/>)",
        R"(            <data label="Wed" val="" type="Text"/>)",
        R"(            <data label="Thu" val="" type="Text"/>)",
        R"(            <data label="Fri" val="" type="Text"/>)",
        R"(            <data label="Sat" val="" type="Text"/>)",
        R"(          </title>)",
        R"(          <data label="ExcludeDates" val="Date" type="MultiEntry"/>)",
        R"(        </object>)",
        R"(      </data>)",
        R"(      <data label="ReplicationInterval" val="30" type="Number"/>)",
        R"(    </data>)",
        R"(    <data label="RotateJournalTimeout" val="0" type="Number"/>)",
        R"(    <data label="AutoSynchronization" val="True" type="Bool"/>)",
        R"(    <data label="SynchType" val="BlockSynchronization" type="SynchronizationType">)",
        R"(      <switch_to_set_default variable="Application" case="FileServer" val="FileSynchronization" type="Application"/>)",
        R"(      <switch_to_set_default variable="Application" case="IIS" val="FileSynchronization" type="Application"/>)",
        R"(      <switch_to_set_default variable="Application" case="FullSystem" val="VolumeSynchronization" type="Application"/>)",
        R"(    </data>)",
        R"(    <data label="ExcludeSameSizeFiles" val="False" type="Bool">)",
        R"(      <switch_to_set_default variable="Application" case="FileServer" val="True" type="Bool"/>)",
        R"(      <switch_to_set_default variable="Application" case="IIS" val="True" type="Bool"/>)",
        R"(    </data>)",
        R"(    <data label="FullQualifiedName" val="" type="Text"/>)",
        R"(    <data label="BuildACL" val="True" type="Bool">)",
        R"(      <switch_to_set_default variable="Application" case="FileServer" val="True" type="Bool"/>)",
        R"(      <switch_to_set_default variable="Application" case="HyperV" val="True" type="Bool"/>)",
        R"(      <switch_to_set_default variable="Application" case="ControlService" val="True" type="Bool"/>)",
        R"(    </data>)",
        R"(    <data label="ReplaceACL" val="False" type="Bool"/>)",
        R"(    <data label="SyncADS" val="True" type="Bool"/>)",
        R"(    <data label="BuildShares" val="False" type="Bool" prompted="True">)",
        R"(      <switch_to_set_default variable="Application" case="FileServer" val="True" type="Bool"/>)",
        R"(    </data>)",
        R"(    <data label="KeepArchiveAttribute" val="False" type="Bool"/>)",
        R"(    <data label="ReplicateCompressAttr" val="False" type="Bool"/>)",
        R"(    <data label="MaintainWriteOrder" val="True" type="Bool" to_keep="?"/>)",
        R"(    <data label="Inject" val="True" type="Bool" to_keep="?"/>)",
        R"(    <object label="External" id="6000" external="True">)",
        R"(      <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(    </object>)",
        R"(    <title label="SytemDefined">)",
        R"(      <data label="StopOnError" val="False" type="Bool"/>)",
        R"(    </title>)",
        R"(    <data label="StopScenario" val="True" type="Bool"/>)",
        R"(    <data label="NumberOfSockets" val="Default" type="NumberOfSocketsType"/>)",
        R"(    <data label="UserCredential" val="" type="Text"/>)",
        R"(    <title label="ManagerData">)",
        R"(      <object label="Report" id="3500" status="True">)",
        R"(        <data label="SynchReportStatus" val="False" type="Bool" check_kids_if_val="True">)",
        R"(          <data label="SynchReportDetailed" val="False" type="Bool"/>)",
        R"(        </data>)",
        R"(        <data label="ReplReportStatus" val="False" type="Bool" check_kids_if_val="True">)",
        R"(          <data label="ReplReportTimeout" val="3600" type="Number"/>)",
        R"(          <data label="ReplReportDetailed" val="False" type="Bool"/>)",
        R"(        </data>)",
        R"(        <data label="VettedFailbackReportStatus" val="True" type="Bool">)",
        R"(          <relevant label="VettedFailback" val="True" type="Bool"/>)",
        R"(        </data>)",
        R"(        <title label="ReportsHandling">)",
        R"(          <data label="StoreReportOnThisHost" val="True" type="Bool" check_kids_if_val="True">)",
        R"(            <data label="ReportRetention" val="0" type="Number"/>)",
        R"(            <data label="OnThisHostReportDir" val="" type="DefFullPath"/>)",
        R"(          </data>)",
        R"(          <data label="Delegate" val="True" type="Bool"/>)",
        R"(          <object label="ReportNotifyEmail" id="3620" status="False">)",
        R"(            <data label="MailServer" val="" type="String"/>)",
        R"(            <data label="MailServerPort" val="25" type="Number"/>)",
        R"(            <data label="EmailAddressTo" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(            <data label="EmailAddressFrom" val="" type="String"/>)",
        R"(            <data label="MailAdvancedSettings" val="" type="Text"/>)",
        R"(          </object>)",
        R"(          <object label="ReportScript" id="300" status="False">)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(        </title>)",
        R"(      </object>)",
        R"(      <object label="EventNotification" id="1120" status="False">)",
        R"(        <object label="NotifyByEmail" id="3620" status="False">)",
        R"(          <data label="OnErrorOnly" val="False" type="Bool"/>)",
        R"(          <data label="MailServer" val="" type="String"/>)",
        R"(          <data label="MailServerPort" val="25" type="Text"/>)",
        R"(          <data label="EmailAddressTo" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(          <data label="EmailAddressFrom" val="" type="String"/>)",
        R"(          <data label="MailAdvancedSettings" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <object label="EventNotifScript" id="300" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <data label="Syslog" val="False" type="Bool"/>)",
        R"(      </object>)",
        R"(    </title>)",
        // The master's node, which holds the replica's node.
        R"(    <title label="ReplicationTree">)",
        R"(      <object label="ReplNode" id="5000">)",
        R"(        <object label="CommonHostProps" id="100">)",
        R"(          <data label="Host" val="" type="String" prompted="True"/>)",
        R"(          <data label="IP" val="0.0.0.0" type="IPAddr"/>)",
        R"(          <data label="Data_IP" val="0.0.0.0" type="IPAddr"/>)",
        R"(          <data label="Port" val="25000" type="Number"/>)",
        R"(          <data label="Index" val="1" type="Number"/>)",
        R"(          <data label="Role" val="Master" type="HostTask"/>)",
        R"(          <data label="Proxy" val="False" type="Bool" prompted="True" check_kids_if_val="True">)",
        R"(            <data label="Server" val="" type="String"/>)",
        R"(            <data label="ProxyPort" val="80" type="Number"/>)",
        R"(            <data label="Credential" val="" type="Text"/>)",
        R"(          </data>)",
        R"(          <object label="SyncScriptBefore" id="300" status="False">)",
        R"(            <irrelevant label="Product" val="Rw" type="Product"/>)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(          <object label="SyncScriptAfter" id="300" status="False">)",
        R"(            <irrelevant label="Product" val="Rw" type="Product"/>)",
        R"(            <data label="Path" val="" type="FullPath"/>)",
        R"(            <data label="Args" val="" type="Text"/>)",
        R"(            <data label="DefaultArgs" val="" type="Text"/>)",
        R"(          </object>)",
        R"(          <data label="Compress" val="False" type="Bool" prompted="True"/>)",
        R"(          <object label="IOThrottler" id="350">)",
        R"(            <data label="23" val="0" type="Number"/>)",
        R"(          </object>)",
        R"(          <data label="CommonDBScheduledBookmarks" val="False" type="Bool" prompted="True">)",
        R"(            <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(            <object label="SchedulerDBBM" id="400" status="True">)",
        R"(              <title label="WeekDays">)",
        R"(                <data label="Sun" val="0:00,2:00,4:00,6:00,8:00,10:00,12:00,14:00,16:00,18:00,20:00,22:00" type="Text"/>)",
        R"(                <data label="Mon" val="0:00,2:00,4:00,6:00,8:00,10:00,12:00,14:00,16:00,18:00,20:00,22:00" type="Text"/>)",
        R"(                <data label="Tue" val="0:00,2:00,4:00,6:00,8:00,10:00,12:00,14:00,16:00,18:00,20:00,22:00" type="Text"/>)",
        R"(                <data label="Wed" val="0:00,2:00,4:00,6:00,8:00,10:00,12:00,14:00,16:00,18:00,20:00,22:00" type="Text"/>)",
        R"(                <data label="Thu" val="0:00,2:00,4:00,6:00,8:00,10:00,12:00,14:00,16:00,18:00,20:00,22:00" type="Text"/>)",
        R"(                <data label="Fri" val="0:00,2:00,4:00,6:00,8:00,10:00,12:00,14:00,16:00,18:00,20:00,22:00" type="Text"/>)",
        R"(                <data label="Sat" val="0:00,2:00,4:00,6:00,8:00,10:00,12:00,14:00,16:00,18:00,20:00,22:00" type="Text"/>)",
        R"(              </title>)",
        R"(              <data label="ExcludeDates" val="Date" type="MultiEntry"/>)",
        R"(            </object>)",
        R"(          </data>)",
        R"(          <data label="SpoolDirectory" val="" type="DefFullPath"/>)",
        R"(          <data label="SpoolSpaceThreshold" val="0" type="Number"/>)",
        R"(          <data label="FreeSpaceThreshold" val="1073741824" type="Number"/>)",
        R"(          <object label="Report" id="3500" status="True">)",
        R"(            <irrelevant label="Product" val="Rw" type="Product"/>)",
        R"(            <data label="SynchReportStatus" val="True" type="Bool" check_kids_if_val="True">)",
        R"(              <data label="SynchReportDetailed" val="True" type="Bool"/>)",
        R"(            </data>)",
        R"(            <data label="ReplReportStatus" val="False" type="Bool" check_kids_if_val="True">)",
        R"(              <data label="ReplReportTimeout" val="3600" type="Number"/>)",
        R"(              <data label="ReplReportDetailed" val="False" type="Bool"/>)",
        R"(            </data>)",
        R"(            <data label="VettedFailbackReportStatus" val="True" type="Bool">)",
        R"(              <relevant label="VettedFailback" val="True" type="Bool"/>)",
        R"(            </data>)",
        R"(            <title label="ReportsHandling">)",
        R"(              <data label="StoreReportOnThisHost" val="False" type="Bool" check_kids_if_val="True">)",
        R"(                <data label="ReportRetention" val="0" type="Number"/>)",
        R"(                <data label="OnThisHostReportDir" val="" type="DefFullPath"/>)",
        R"(              </data>)",
        R"(              <data label="Delegate" val="True" type="Bool"/>)",
        R"(              <object label="ReportNotifyEmail" id="3620" status="False">)",
        R"(                <data label="MailServer" val="" type="String"/>)",
        R"(                <data label="MailServerPort" val="25" type="Number"/>)",
        R"(                <data label="EmailAddressTo" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(                <data label="EmailAddressFrom" val="" type="String"/>)",
        R"(                <data label="MailAdvancedSettings" val="" type="Text"/>)",
        R"(              </object>)",
        R"(              <object label="ReportScript" id="300" status="False">)",
        R"(                <data label="Path" val="" type="FullPath"/>)",
        R"(                <data label="Args" val="" type="Text"/>)",
        R"(                <data label="DefaultArgs" val="" type="Text"/>)",
        R"(              </object>)",
        R"(            </title>)",
        R"(          </object>)",
        R"(          <object label="EventNotification" id="1120" status="True">)",
        R"(            <object label="NotifyByEmail" id="3620" status="False">)",
        R"(              <data label="OnErrorOnly" val="False" type="Bool"/>)",
        R"(              <data label="MailServer" val="" type="String"/>)",
        R"(              <data label="MailServerPort" val="25" type="Number"/>)",
        R"(              <data label="EmailAddressTo" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(              <data label="EmailAddressFrom" val="" type="String"/>)",
        R"(              <data label="MailAdvancedSettings" val="" type="Text"/>)",
        R"(            </object>)",
        R"(            <object label="EventNotifScript" id="300" status="False">)",
        R"(              <data label="Path" val="" type="FullPath"/>)",
        R"(              <data label="Args" val="" type="Text"/>)",
        R"(              <data label="DefaultArgs" val="" type="Text"/>)",
        R"(            </object>)",
        R"(            <data label="Syslog" val="True" type="Bool"/>)",
        R"(          </object>)",
        R"(          <object label="TriggerFile" id="4200" status="False">)",
        R"(            <data label="TargetFile" val="" type="String"/>)",
        R"(            <object label="TrigFileScript" id="300" status="False">)",
        R"(              <data label="Path" val="" type="FullPath"/>)",
        R"(              <data label="Args" val="" type="Text"/>)",
        R"(              <data label="DefaultArgs" val="" type="Text"/>)",
        R"(            </object>)",
        R"(          </object>)",
        R"(          <data label="UserCredential" val="" type="Text"/>)",
        R"(          <object label="ListRegistryPaths_32" id="250">)",
        R"(            <data label="RegistryPaths" val="Text" type="MultiEntry"/>)",
        R"(          </object>)",
        R"(          <object label="ListRegistryPaths_64" id="250">)",
        R"(            <data label="RegistryPaths" val="Text" type="MultiEntry"/>)",
        R"(          </object>)",
        R"(          <data label="ListRootDirs" val="3010" type="MultiEntry" mandatory="True">)",
        R"(            <object label="RootDir" id="3010">)",
        R"(              <data label="Path" val="" type="FullPath"/>)",
        R"(              <data label="ID" val="0" type="Number"/>)",
        R"(              <data label="MatchAllKidsVolume" val="True" type="Bool"/>)",
        R"(              <data label="DBdir" val="True" type="Bool">)",
        R"(                <switch_to_set_default variable="Application" case="FileServer" val="False" type="Bool"/>)",
        R"(                <switch_to_set_default variable="Application" case="FullSystem" val="False" type="Bool"/>)",
        R"(              </data>)",
        R"(              <object label="FileRegExpr" id="500" status="False">)",
        R"(                <data label="ExcludeFilter" val="True" type="Bool"/>)",
        R"(                <data label="ListFilters" val="String" type="MultiEntry"/>)",
        R"(              </object>)",
        R"(              <object label="DirRegExpr" id="500" status="False">)",
        R"(                <data label="ExcludeFilter" val="True" type="Bool"/>)",
        R"(                <data label="ListFilters" val="String" type="MultiEntry"/>)",
        R"(              </object>)",
        R"(              <object label="DirPath" id="500" status="False">)",
        R"(                <data label="ExcludeFilter" val="True" type="Bool"/>)",
        R"(                <data label="ListFilters" val="String" type="MultiEntry"/>)",
        R"(              </object>)",
        R"(            </object>)",
        R"(          </data>)",
        R"(        </object>)",
        R"(        <object label="ReplNode" id="5000">)",
        R"(          <object label="CommonHostProps" id="100">)",
        R"(            <data label="Host" val="" type="String" prompted="True"/>)",
        R"(            <data label="IP" val="0.0.0.0" type="IPAddr"/>)",
        R"(            <data label="Data_IP" val="0.0.0.0" type="IPAddr"/>)",
        R"(            <data label="Port" val="25000" type="Number"/>)",
        R"(            <data label="Index" val="2" type="Number"/>)",
        R"(            <data label="Role" val="Replica" type="HostTask"/>)",
        R"(            <data label="EnableProxy" val="False" type="Bool" prompted="True"/>)",
        R"(            <object label="SyncScriptBefore" id="300" status="False">)",
        R"(              <data label="Path" val="" type="FullPath"/>)",
        R"(              <data label="Args" val="" type="Text"/>)",
        R"(              <data label="DefaultArgs" val="" type="Text"/>)",
        R"(            </object>)",
        R"(            <object label="SyncScriptAfter" id="300" status="False">)",
        R"(              <data label="Path" val="" type="FullPath"/>)",
        R"(              <data label="Args" val="" type="Text"/>)",
        R"(              <data label="DefaultArgs" val="" type="Text"/>)",
        R"(            </object>)",
        R"(            <data label="Compress" val="False" type="Bool" prompted="True"/>)",
        R"(            <data label="SpoolDirectory" val="" type="DefFullPath"/>)",
        R"(            <data label="SpoolSpaceThreshold" val="0" type="Number"/>)",
        R"(            <data label="FreeSpaceThreshold" val="1073741824" type="Number"/>)",
        R"(            <object label="Report" id="3500" status="True">)",
        R"(              <irrelevant label="Product" val="Rw" type="Product"/>)",
        R"(              <data label="SynchReportStatus" val="True" type="Bool" check_kids_if_val="True">)",
        R"(                <data label="SynchReportDetailed" val="True" type="Bool"/>)",
        R"(              </data>)",
        R"(              <data label="ReplReportStatus" val="False" type="Bool" check_kids_if_val="True">)",
        R"(                <data label="ReplReportTimeout" val="3600" type="Number"/>)",
        R"(                <data label="ReplReportDetailed" val="False" type="Bool"/>)",
        R"(              </data>)",
        R"(              <data label="VettedFailbackReportStatus" val="True" type="Bool">)",
        R"(                <relevant label="VettedFailback" val="True" type="Bool"/>)",
        R"(              </data>)",
        R"(              <title label="ReportsHandling">)",
        R"(                <data label="StoreReportOnThisHost" val="False" type="Bool" check_kids_if_val="True">)",
        R"(                  <data label="ReportRetention" val="0" type="Number"/>)",
        R"(                  <data label="OnThisHostReportDir" val="" type="DefFullPath"/>)",
        R"(                </data>)",
        R"(                <data label="Delegate" val="True" type="Bool"/>)",
        R"(                <object label="ReportNotifyEmail" id="3620" status="False">)",
        R"(                  <data label="MailServer" val="" type="String"/>)",
        R"(                  <data label="MailServerPort" val="25" type="Number"/>)",
        R"(                  <data label="EmailAddressTo" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(                  <data label="EmailAddressFrom" val="" type="String"/>)",
        R"(                  <data label="MailAdvancedSettings" val="" type="Text"/>)",
        R"(                </object>)",
        R"(                <object label="ReportScript" id="300" status="False">)",
        R"(                  <data label="Path" val="" type="FullPath"/>)",
        R"(                  <data label="Args" val="" type="Text"/>)",
        R"(                  <data label="DefaultArgs" val="" type="Text"/>)",
        R"(                </object>)",
        R"(              </title>)",
        R"(            </object>)",
        R"(            <object label="EventNotification" id="1120" status="True">)",
        R"(              <object label="NotifyByEmail" id="3620" status="False">)",
        R"(                <data label="OnErrorOnly" val="False" type="Bool"/>)",
        R"(                <data label="MailServer" val="" type="String"/>)",
        R"(                <data label="MailServerPort" val="25" type="Number"/>)",
        R"(                <data label="EmailAddressTo" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(                <data label="EmailAddressFrom" val="" type="String"/>)",
        R"(                <data label="MailAdvancedSettings" val="" type="Text"/>)",
        R"(              </object>)",
        R"(              <object label="EventNotifScript" id="300" status="False">)",
        R"(                <data label="Path" val="" type="FullPath"/>)",
        R"(                <data label="Args" val="" type="Text"/>)",
        R"(                <data label="DefaultArgs" val="" type="Text"/>)",
        R"(              </object>)",
        R"(              <data label="Syslog" val="True" type="Bool"/>)",
        R"(            </object>)",
        R"(            <object label="TriggerFile" id="4200" status="False">)",
        R"(              <data label="TargetFile" val="" type="String"/>)",
        R"(              <object label="TrigFileScript" id="300" status="False">)",
        R"(                <data label="Path" val="" type="FullPath"/>)",
        R"(                <data label="Args" val="" type="Text"/>)",
        R"(                <data label="DefaultArgs" val="" type="Text"/>)",
        R"(              </object>)",
        R"(            </object>)",
        R"(            <data label="UserCredential" val="" type="Text"/>)",
        R"(            <object label="ListRegistryPaths_32" id="250">)",
        R"(              <data label="RegistryPaths" val="Text" type="MultiEntry"/>)",
        R"(            </object>)",
        R"(            <object label="ListRegistryPaths_64" id="250">)",
        R"(              <data label="RegistryPaths" val="Text" type="MultiEntry"/>)",
        R"(            </object>)",
        R"(            <data label="ListRootDirs" val="3010" type="MultiEntry" mandatory="True">)",
        R"(              <object label="RootDir" id="3010">)",
        R"(                <data label="Path" val="" type="FullPath"/>)",
        R"(                <data label="ID" val="0" type="Number"/>)",
        R"(                <data label="MatchAllKidsVolume" val="True" type="Bool"/>)",
        R"(                <data label="DBdir" val="True" type="Bool">)",
        R"(                  <switch_to_set_default variable="Application" case="FileServer" val="False" type="Bool"/>)",
        R"(                  <switch_to_set_default variable="Application" case="FullSystem" val="False" type="Bool"/>)",
        R"(                </data>)",
        R"(                <object label="FileRegExpr" id="500" status="False">)",
        R"(                  <data label="ExcludeFilter" val="True" type="Bool"/>)",
        R"(                  <data label="ListFilters" val="String" type="MultiEntry"/>)",
        R"(                </object>)",
        R"(                <object label="DirRegExpr" id="500" status="False">)",
        R"(                  <data label="ExcludeFilter" val="True" type="Bool"/>)",
        R"(                  <data label="ListFilters" val="String" type="MultiEntry"/>)",
        R"(                </object>)",
        R"(                <object label="DirPath" id="500" status="False">)",
        R"(                  <data label="ExcludeFilter" val="True" type="Bool"/>)",
        R"(                  <data label="ListFilters" val="String" type="MultiEntry"/>)",
        R"(                </object>)",
        R"(              </object>)",
        R"(            </data>)",
        R"(            <title label="ToCloud">)",
        R"(              <data label="CloudProvider" val="AmazonEC2" type="CloudProviderType"/>)",
        R"(              <data label="CloudAccount" val="" type="Text"/>)",
        R"(              <data label="CloudInstanceID" val="" type="Text"/>)",
        R"(              <data label="CloudRegion" val="" type="Text"/>)",
        R"(              <data label="CloudStopInstance" val="False" type="Bool"/>)",
        R"(              <data label="CloudCleanUpResources" val="False" type="Bool"/>)",
        R"(            </title>)",
        R"(          </object>)",
        R"(          <object label="SpecificReplicaProps" id="150">)",
        R"(            <object label="BandwidthThrottler" id="350">)",
        R"(              <data label="23" val="0" type="Number"/>)",
        R"(            </object>)",
        R"(            <data label="SecureCommLevel" val="0" type="SecureCommunicationLevel"/>)",
        R"(            <data label="KeepFilesDuringSynchron" val="False" type="Bool"/>)",
        R"(            <data label="KeepFilesDuringReplication" val="False" type="Bool"/>)",
        R"(            <data label="VMLocalDirectory" val="" type="Text"/>)",
        R"(            <data label="RetainSystemState" val="False" type="Bool">)",
        R"(              <data label="RetentionCount" val="8" type="Number"/>)",
        R"(              <data label="SysStateSpoolDirectory" val="" type="DefFullPath"/>)",
        R"(              <data label="SysStateSpoolSpaceThreshold" val="4096" type="Number"/>)",
        R"(              <data label="SysStateFreeSpaceThreshold" val="1073741824" type="Number"/>)",
        R"(              <data label="DeleteSnapshotsReplica" val="False" type="Bool"/>)",
        R"(              <data label="MoveSnapshotsToNewDirectory" val="True" type="Bool"/>)",
        R"(              <data label="Initial" val="True" type="Bool"/>)",
        R"(            </data>)",
        R"(            <data label="VirtualDiskFormat" val="DynamicallyExpanding" type="VirtualHardDiskType" prompted="True"/>)",
        R"(            <data label="VirtualPlatformInfo" val="" type="Text" prompted="True">)",
        R"(              <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(            </data>)",
        R"(            <data label="VirtualPlatformType" val="HyperV" type="VirtualPlatformType" prompted="True">)",
        R"(              <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(            </data>)",
        R"(            <data label="VirtualPlatform" val="" type="String" prompted="True">)",
        R"(              <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(            </data>)",
        R"(            <data label="VirtualPlatformPort" val="80" type="Number">)",
        R"(              <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(            </data>)",
        R"(            <data label="SSLConnection" val="False" type="Bool">)",
        R"(              <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(            </data>)",
        R"(            <data label="VMDataCenter" val="" type="Text">)",
        R"(              <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(              <data label="DC_id" val="" type="Text"/>)",
        R"(            </data>)",
        R"(            <data label="VMHostServer" val="" type="Text">)",
        R"(              <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(              <data label="host_server_id" val="" type="Text"/>)",
        R"(            </data>)",
        R"(            <data label="VMStorage" val="" type="Text">)",
        R"(              <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(              <data label="storage_id" val="" type="Text"/>)",
        R"(              <data label="IsProvision" val="True" type="Bool"/>)",
        R"(              <data label="HavCluster" val="False" type="Bool"/>)",
        R"(              <data label="host_system_id" val="" type="Text"/>)",
        R"(            </data>)",
        R"(            <data label="VMResourcePool" val="" type="Text">)",
        R"(              <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(              <data label="resource_id" val="" type="Text"/>)",
        R"(            </data>)",
        R"(            <title label="VirtualMachine">)",
        R"(              <data label="CPUInfo" val="1" type="Number"/>)",
        R"(              <data label="MemoryInfo" val="1024" type="Number"/>)",
        R"(              <data label="CloudInstanceType" val="ec2_t1_micro" type="CloudInstanceType"/>)",
        R"(              <data label="VirtualMachineName" val="" type="String">)",
        R"(                <relevant label="Application" val="FullSystem" type="Application"/>)",
        R"(              </data>)",
        R"(              <data label="VirtualNetworkMappingsEdit" val="" type="Text"/>)",
        R"(              <data label="ListVirtualNetworkMappings" val="4450" type="MultiEntry"/>)",
        R"(              <data label="VirtualNetworkMappingsEditSwitchover" val="" type="Text"/>)",
        R"(              <data label="ListVirtualNetworkMappingsSwitchover" val="4460" type="MultiEntry"/>)",
        R"(            </title>)",
        R"(            <data label="StopDBOnRun" val="True" type="Bool">)",
        R"(              <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(            </data>)",
        R"(            <data label="FailoverHost" val="False" type="Bool"/>)",
        R"(            <data label="CDPHost" val="False" type="Bool">)",
        R"(              <relevant label="Application" val="Exchange" type="Application"/>)",
        R"(              <data label="CDPReportStatus" val="True" type="Bool">)",
        R"(                <data label="CDPReportDetailed" val="True" type="Bool"/>)",
        R"(              </data>)",
        R"(            </data>)",
        R"(            <title label="QuillonBackup">)",
        R"(              <data label="CreateVSS" val="True" type="Bool"/>)",
        R"(              <data label="NumOfSnapshotSetToKeep" val="10" type="Number" minimum="1"/>)",
        R"(              <data label="ShadowStorageVolume" val="" type="DefFullPath"/>)",
        R"(              <data label="ShadowStorageMaxSize" val="1073741824" type="Number"/>)",
        R"(            </title>)",
        R"(            <title label="Restore">)",
        R"(              <data label="Delay" val="False" type="Bool" check_kids_if_val="False">)",
        R"(                <data label="DelayTimeOut" val="10" type="Number"/>)",
        R"(              </data>)",
        R"(              <data label="DataRewind" val="False" type="Bool" prompted="True" check_kids_if_val="False">)",
        R"(                <data label="ReciveryInterval" val="0" type="Number"/>)",
        R"(                <data label="MaxDiskSize" val="200" type="Number"/>)",
        R"(                <data label="MaxBookmarkCount" val="12" type="Number" minimum="1" maximum="50"/>)",
        R"(              </data>)",
        R"(            </title>)",
        R"(            <title label="ReplacementAttempts">)",
        R"(              <data label="NumUnsuccAttempts" val="100" type="Number"/>)",
        R"(              <data label="UnsuccAttemptsTimeout" val="600" type="Number"/>)",
        R"(            </title>)",
        R"(            <title label="VSM">)",
        R"(              <data label="Number" val="10" type="Number" minimum="1"/>)",
        R"(              <data label="Storage" val="" type="DefFullPath"/>)",
        R"(              <data label="StorageSize" val="1073741824" type="Number"/>)",
        R"(            </title>)",
        R"(            <object label="ReplicaScheduledTask" id="4300">)",
        R"(              <object label="VettedFailbackObj" id="4310" status="False" prompted="True">)",
        R"(                <relevant label="VettedFailback" val="True" type="Bool"/>)",
        R"(                <object label="SchedulerVF" id="400" status="False" prompted="True">)",
        R"(                  <title label="WeekDays">)",
        R"(                    <data label="Sun" val="" type="Text"/>)",
        R"(                    <data label="Mon" val="" type="Text"/>)",
        R"(                    <data label="Tue" val="" type="Text"/>)",
        R"(                    <data label="Wed" val="" type="Text"/>)",
        R"(                    <data label="Thu" val="" type="Text"/>)",
        R"(                    <data label="Fri" val="" type="Text"/>)",
        R"(                    <data label="Sat" val="" type="Text"/>)",
        R"(                  </title>)",
        R"(                  <data label="ExcludeDates" val="Date" type="MultiEntry"/>)",
        R"(                </object>)",
        R"(                <data label="StartDB" val="True" type="Bool">)",
        R"(                  <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(                  <data label="AutomaticStartDB" val="True" type="Bool"/>)",
        R"(                  <object label="VFStartDBScript" id="300" status="False">)",
        R"(                    <data label="Path" val="" type="FullPath"/>)",
        R"(                    <data label="Args" val="" type="Text"/>)",
        R"(                    <data label="DefaultArgs" val="" type="Text"/>)",
        R"(                  </object>)",
        R"(                </data>)",
        R"(                <data label="DbTesting" val="True" type="Bool">)",
        R"(                  <data label="AutomaticDbTest" val="True" type="Bool">)",
        R"(                    <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(                  </data>)",
        R"(                  <object label="VFTestDBScript" id="300" status="False">)",
        R"(                    <data label="Path" val="" type="FullPath"/>)",
        R"(                    <data label="Args" val="" type="Text"/>)",
        R"(                    <data label="DefaultArgs" val="" type="Text"/>)",
        R"(                  </object>)",
        R"(                </data>)",
        R"(                <data label="SuccessActOnline" val="True" type="Bool">)",
        R"(                  <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(                  <object label="OnlineScript" id="300" status="False">)",
        R"(                    <data label="Path" val="" type="FullPath"/>)",
        R"(                    <data label="Args" val="" type="Text"/>)",
        R"(                    <data label="DefaultArgs" val="" type="Text"/>)",
        R"(                  </object>)",
        R"(                </data>)",
        R"(                <data label="StopDB" val="True" type="Bool">)",
        R"(                  <irrelevant label="Application" val="FileServer" type="Application"/>)",
        R"(                  <data label="AutomaticStopDB" val="True" type="Bool"/>)",
        R"(                  <object label="VFStopDBScript" id="300" status="False">)",
        R"(                    <data label="Path" val="" type="FullPath"/>)",
        R"(                    <data label="Args" val="" type="Text"/>)",
        R"(                    <data label="DefaultArgs" val="" type="Text"/>)",
        R"(                  </object>)",
        R"(                </data>)",
        R"(                <data label="SuccessActOffline" val="True" type="Bool" check_kids_if_val="True">)",
        R"(                  <data label="ShadowCopy" val="False" type="Bool" check_kids_if_val="True">)",
        R"(                    <data label="NumSnapsh" val="10" type="Number" minimum="1"/>)",
        R"(                    <data label="Volume" val="" type="DefFullPath"/>)",
        R"(                    <data label="StoreSize" val="0" type="Number"/>)",
        R"(                  </data>)",
        R"(                  <object label="OfflineScript" id="300" status="False">)",
        R"(                    <data label="Path" val="" type="FullPath"/>)",
        R"(                    <data label="Args" val="" type="Text"/>)",
        R"(                    <data label="DefaultArgs" val="" type="Text"/>)",
        R"(                  </object>)",
        R"(                </data>)",
        R"(              </object>)",
        R"(              <object label="Suspend" id="4400" status="False" prompted="True">)",
        R"(                <data label="OffLineShadowCopy" val="True" type="Bool"/>)",
        R"(                <data label="NumSnapsh" val="10" type="Number" minimum="1"/>)",
        R"(                <data label="Volume" val="" type="DefFullPath"/>)",
        R"(                <data label="StoreSize" val="0" type="Number"/>)",
        R"(                <object label="SuspendScheduler" id="400" status="False" prompted="True">)",
        R"(                  <title label="WeekDays">)",
        R"(                    <data label="Sun" val="" type="Text"/>)",
        R"(                    <data label="Mon" val="" type="Text"/>)",
        R"(                    <data label="Tue" val="" type="Text"/>)",
        R"(                    <data label="Wed" val="" type="Text"/>)",
        R"(                    <data label="Thu" val="" type="Text"/>)",
        R"(                    <data label="Fri" val="" type="Text"/>)",
        R"(                    <data label="Sat" val="" type="Text"/>)",
        R"(                  </title>)",
        R"(                  <data label="ExcludeDates" val="Date" type="MultiEntry"/>)",
        R"(                </object>)",
        R"(                <object label="SuspendScript" id="300" status="False">)",
        R"(                  <data label="Path" val="" type="FullPath"/>)",
        R"(                  <data label="Args" val="" type="Text"/>)",
        R"(                  <data label="DefaultArgs" val="" type="Text"/>)",
        R"(                </object>)",
        R"(                <object label="SuspendOfflineScript" id="300" status="False">)",
        R"(                  <data label="Path" val="" type="FullPath"/>)",
        R"(                  <data label="Args" val="" type="Text"/>)",
        R"(                  <data label="DefaultArgs" val="" type="Text"/>)",
        R"(                </object>)",
        R"(              </object>)",
        R"(            </object>)",
        R"(          </object>)",
        R"(        </object>)",
        R"(      </object>)",
        R"(    </title>)",
        R"(  </object>)",
        // The model of a scenario group.
        R"(  <object label="Group" id="8000">)",
        R"(    <data label="GroupID" val="0" type="Number"/>)",
        R"(    <data label="Product" val="variable" type="Product"/>)",
        R"(    <data label="Group_VersionNumber" val="3" type="Number"/>)",
        R"(    <data label="GroupType" val="regular" type="GroupType"/>)",
        R"(    <data label="GroupName" val="variable" type="String"/>)",
        R"(    <data label="Signature" val="0" type="Number"/>)",
        R"(    <data label="GroupComment" val="" type="Text"/>)",
        R"(    <data label="ScenarioList" val="8010" type="MultiEntry" mandatory="True"/>)",
        R"(    <data label="ScenarioDependencyList" val="8070" type="MultiEntry" mandatory="True"/>)",
        R"(    <object label="GroupFailover" id="8030" status="True">)",
        R"(      <relevant label="Product" val="Ha" type="Product"/>)",
        R"(      <object label="Failover_together" id="8040" status="True">)",
        R"(        <data label="ExecScenFailoverConfig" val="True" type="Bool"/>)",
        R"(        <data label="FailoverScenarioList" val="8050" type="MultiEntry" mandatory="True"/>)",
        R"(      </object>)",
        R"(      <data label="ScenarioRedundancyList" val="8060" type="MultiEntry"/>)",
        R"(    </object>)",
        R"(    <object label="GroupEventNotification" id="8200" status="False">)",
        R"(      <object label="GroupNotifyByEmail" id="8210" status="False">)",
        R"(        <data label="OnErrorOnly" val="False" type="Bool"/>)",
        R"(        <data label="MailServer" val="" type="String"/>)",
        R"(        <data label="MailServerPort" val="25" type="Number"/>)",
        R"(        <data label="EmailAddressTo" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(        <data label="EmailAddressFrom" val="" type="String"/>)",
        R"(        <data label="MailAdvancedSettings" val="" type="Text"/>)",
        R"(      </object>)",
        R"(      <object label="GroupEventNotifScript" id="8220" status="False">)",
        R"(        <data label="Path" val="" type="FullPath"/>)",
        R"(        <data label="Args" val="" type="Text"/>)",
        R"(        <data label="DefaultArgs" val="" type="Text"/>)",
        R"(      </object>)",
        R"(      <data label="Syslog" val="False" type="Bool"/>)",
        R"(    </object>)",
        R"(    <object label="GroupReport" id="8100" status="False">)",
        R"(      <title label="ReportsHandling">)",
        R"(        <object label="GroupReportNotifyEmail" id="8110" status="False">)",
        R"(          <data label="MailServer" val="" type="String"/>)",
        R"(          <data label="MailServerPort" val="25" type="Number"/>)",
        R"(          <data label="EmailAddressTo" val="String" type="MultiEntry" mandatory="True"/>)",
        R"(          <data label="EmailAddressFrom" val="" type="String"/>)",
        R"(          <data label="MailAdvancedSettings" val="" type="Text"/>)",
        R"(        </object>)",
        R"(        <object label="GroupReportScript" id="8120" status="False">)",
        R"(          <data label="Path" val="" type="FullPath"/>)",
        R"(          <data label="Args" val="" type="Text"/>)",
        R"(          <data label="DefaultArgs" val="" type="Text"/>)",
        R"(        </object>)",
        R"(      </title>)",
        R"(    </object>)",
        R"(  </object>)",
        R"(</object>)",
        "",
    },
    "XMC_VersionNumber",
    "Group_VersionNumber",
};

// ---- what the compiler proves about the text ---------------------------------------------------
// The configurator parses this text at load and compares it with the code tables; a slip found
// there is only a trace line in a running engine. Here the same facts stop the build. The text
// is read in chunks of lines, each chunk one constant evaluation that carries the state of the
// one before, so that no single evaluation outgrows a compiler's budget of steps; for the same
// reason the reading works on bare characters rather than on library strings.

// A piece of one line.
struct view_s {
    const char* begin = nullptr;
    const char* end = nullptr;

    constexpr bool empty() const { return begin == end; }
    constexpr bool is(const char* word) const {
        const char* at = begin;
        for (; at != end; ++at, ++word)
            if (*word != *at) return false;
        return *word == 0;
    }
    constexpr bool is(const view_s& other) const {
        if (end - begin != other.end - other.begin) return false;
        for (const char *a = begin, *b = other.begin; a != end; ++a, ++b)
            if (*a != *b) return false;
        return true;
    }
    constexpr bool is_number() const {
        if (begin == end) return false;
        for (const char* at = begin; at != end; ++at)
            if (*at < '0' || *at > '9') return false;
        return true;
    }
    constexpr std::uint64_t number() const {
        std::uint64_t value = 0;
        for (const char* at = begin; at != end; ++at)
            value = value * 10 + static_cast<std::uint64_t>(*at - '0');
        return value;
    }
};

constexpr bool blank(char c) { return c == ' ' || c == '\t'; }
constexpr bool name_char(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// One line, read as the one tag (or element with its text) it holds.
struct tag_s {
    enum form_t : std::uint8_t { bad, declaration, open, close, empty, with_text };
    static constexpr std::size_t max_attributes = 8;

    form_t form = bad;
    view_s name;
    std::size_t attribute_count = 0;
    view_s attribute_names[max_attributes];
    view_s attribute_values[max_attributes];

    // The value of the attribute, and whether it is there at all.
    constexpr bool find(const char* attribute, view_s& value) const {
        for (std::size_t i = 0; i < attribute_count; ++i)
            if (attribute_names[i].is(attribute)) {
                value = attribute_values[i];
                return true;
            }
        return false;
    }
    constexpr bool has(const char* attribute) const {
        view_s ignored;
        return find(attribute, ignored);
    }
    constexpr view_s value(const char* attribute) const {
        view_s found;
        find(attribute, found);
        return found;
    }
    constexpr bool value_is(const char* attribute, const char* word) const {
        view_s found;
        return find(attribute, found) && found.is(word);
    }
};

constexpr bool starts_with(const char* text, const char* word) {
    for (; *word; ++text, ++word)
        if (*text != *word) return false;
    return true;
}

// The subset of XML that this text keeps to: one tag per line, attribute values in double
// quotes without `<` or `>` (the reader ends a tag at the first `>`), the text of a `commnent`
// on the line of its tags.
constexpr tag_s read_tag(const char* at) {
    tag_s tag;
    while (blank(*at)) ++at;
    if (starts_with(at, R"(<?xml version="1.0"?>)") && !at[21]) {
        tag.form = tag_s::declaration;
        return tag;
    }
    if (*at != '<') return tag;
    ++at;
    bool closing = *at == '/';
    if (closing) ++at;
    tag.name.begin = at;
    while (name_char(*at)) ++at;
    tag.name.end = at;
    if (tag.name.empty()) return tag;
    if (closing) {
        if (at[0] == '>' && !at[1]) tag.form = tag_s::close;
        return tag;
    }
    for (;;) {
        bool separated = blank(*at);
        while (blank(*at)) ++at;
        if (at[0] == '/' && at[1] == '>' && !at[2]) {
            tag.form = tag_s::empty;
            return tag;
        }
        if (at[0] == '>') {
            if (!at[1]) {
                tag.form = tag_s::open;
                return tag;
            }
            // Text, then the element's closing tag and nothing more.
            const char* text = ++at;
            while (*at && *at != '<' && *at != '>') ++at;
            if (at == text || at[0] != '<' || at[1] != '/') return tag;
            at += 2;
            for (const char* n = tag.name.begin; n != tag.name.end; ++n, ++at)
                if (*at != *n) return tag;
            if (at[0] == '>' && !at[1]) tag.form = tag_s::with_text;
            return tag;
        }
        if (!separated || tag.attribute_count == tag_s::max_attributes) return tag;
        view_s name{at, at};
        while (name_char(*at)) ++at;
        name.end = at;
        if (name.empty() || at[0] != '=' || at[1] != '"') return tag;
        for (std::size_t i = 0; i < tag.attribute_count; ++i)
            if (tag.attribute_names[i].is(name)) return tag;
        at += 2;
        view_s value{at, at};
        while (*at && *at != '"') {
            if (*at == '<' || *at == '>') return tag;
            ++at;
        }
        if (!*at) return tag;
        value.end = at++;
        tag.attribute_names[tag.attribute_count] = name;
        tag.attribute_values[tag.attribute_count] = value;
        ++tag.attribute_count;
    }
}

// An open element on the way from the root to the current line.
struct frame_s {
    view_s element;
    view_s label;
    bool plain_child_seen = false; // a child other than a condition or a switch
    std::size_t children = 0;
};

constexpr std::size_t max_depth = 24;

constexpr bool is_condition(const view_s& element) {
    return element.is("relevant") || element.is("irrelevant") ||
           element.is("switch_to_set_default");
}

template <std::size_t N>
constexpr bool among(const std::array<const char*, N>& names, const view_s& name) {
    for (const char* n : names)
        if (name.is(n)) return true;
    return false;
}

// The row of an object in object_tag_table; object_not_found for none.
constexpr std::uint32_t object_row(const view_s& name) {
    for (std::uint32_t row = 0; row < xmc_enums_n::object_tag_count; ++row)
        if (name.is(xmc_enums_n::object_tag_table[row].name)) return row;
    return xmc_enums_n::object_not_found;
}

// Where the reading stands after some lines, and the first line (counted from 1) at which
// each rule failed, 0 while it holds. The rules:
// - shape: every line is a tag of the subset, closing tags match, one root that closes on the
//   last line; each element carries its attributes (and only those) with the leading ones in
//   order, stands where the grammar lets it stand, and a condition or switch stands before the
//   other children of its parent;
// - order: the root `ConfigDataHolder` (id 1) holds `Version` 5, the definitions (enumerations,
//   then shared objects), `Scenario` (id 1000) and `Group` (id 8000), in that order;
// - enums: the enumerations follow the code's table, names and items in its positions;
// - versions: `XMC_VersionNumber` once, in `Scenario`, and `Group_VersionNumber` once, in
//   `Group`, each with the version the configurator keeps;
// - object rows: every object below a shared definition, `Scenario` or `Group` has its row in
//   object_tag_table, the row's id where the row fixes one, and stands under the object of the
//   row's papa; a `ReplNode` in a `ReplNode` and a `HostProps` in a `HostProps` are their own
//   papa's row, and `Report` and `EventNotification` also stand in `Scenario` itself, for the
//   manager's data.
struct reading_s {
    frame_s frames[max_depth];
    std::size_t depth = 0;
    std::size_t next_line = 0;
    std::size_t enums = 0;
    std::size_t xmc_versions = 0;
    std::size_t group_versions = 0;

    std::size_t shape_fault = 0;
    std::size_t order_fault = 0;
    std::size_t enum_fault = 0;
    std::size_t version_fault = 0;
    std::size_t object_row_fault = 0;

    constexpr const frame_s& parent() const { return frames[depth - 1]; }
    // The label of the nearest enclosing object, external ones included.
    constexpr view_s enclosing_object() const {
        for (std::size_t i = depth; i-- > 0;)
            if (frames[i].element.is("object")) return frames[i].label;
        return {};
    }
    constexpr void fail(std::size_t& fault, std::size_t line) {
        if (!fault) fault = line;
    }

    constexpr void read(std::size_t line_count);
    constexpr bool attributes_fit(const tag_s& tag) const;
    constexpr bool placed_right(const tag_s& tag) const;
    constexpr bool in_order(const tag_s& tag) const;
    constexpr bool enum_as_in_table(const tag_s& tag);
    constexpr bool version_right(const tag_s& tag);
    constexpr bool object_row_right(const tag_s& tag) const;
};

// Which attributes each element carries: `label` and `id` first on an object, `label`, `val`
// and `type` first on a data item, so that the lookup by label reads them by position. Only
// `val` may be empty; an id is a number other than 0; a condition's `type` is that of its
// variable.
constexpr bool reading_s::attributes_fit(const tag_s& tag) const {
    const view_s* names = tag.attribute_names;
    std::size_t count = tag.attribute_count;
    for (std::size_t i = 0; i < count; ++i)
        if (tag.attribute_values[i].empty() && !names[i].is("val")) return false;
    if (tag.name.is("object")) {
        for (std::size_t i = 0; i < count; ++i)
            if (!among(xmc_n::object_attributes, names[i])) return false;
        view_s status;
        if (tag.find("status", status) && !status.is("True") && !status.is("False")) return false;
        return count >= 2 && names[0].is("label") && names[1].is("id") &&
               tag.attribute_values[1].is_number() && tag.attribute_values[1].number() != 0;
    }
    if (tag.name.is("data")) {
        for (std::size_t i = 0; i < count; ++i)
            if (!among(xmc_n::data_attributes, names[i])) return false;
        view_s limit;
        if (tag.find("minimum", limit) && !limit.is_number()) return false;
        if (tag.find("maximum", limit) && !limit.is_number()) return false;
        return count >= 3 && names[0].is("label") && names[1].is("val") && names[2].is("type");
    }
    if (tag.name.is("title")) return count == 1 && names[0].is("label");
    if (tag.name.is("enum"))
        return count == 2 && names[0].is("label") && names[1].is("val") &&
               !tag.attribute_values[1].empty();
    if (tag.name.is("relevant") || tag.name.is("irrelevant")) {
        if (count != 3 || !tag.has("label") || !tag.has("val") || !tag.has("type")) return false;
        if (tag.value_is("label", "VettedFailback")) return tag.value_is("type", "Bool");
        if (tag.value_is("label", "Application")) return tag.value_is("type", "Application");
        return tag.value_is("label", "Product") && tag.value_is("type", "Product");
    }
    if (tag.name.is("switch_to_set_default"))
        return count == 4 && tag.value_is("variable", "Application") && tag.has("case") &&
               tag.has("val") && tag.has("type");
    if (tag.name.is("definitions") || tag.name.is("enums") || tag.name.is("objects") ||
        tag.name.is("commnent"))
        return count == 0;
    return false;
}

// Each element stands where the grammar lets it stand.
constexpr bool reading_s::placed_right(const tag_s& tag) const {
    if (depth == 0) return tag.name.is("object");
    const view_s& up = parent().element;
    if (tag.name.is("object"))
        return up.is("object") || up.is("objects") || up.is("title") || up.is("data");
    if (tag.name.is("data")) return up.is("object") || up.is("title") || up.is("data");
    if (tag.name.is("title")) return up.is("object") || up.is("title") || up.is("objects");
    if (tag.name.is("definitions")) return depth == 1;
    if (tag.name.is("enums") || tag.name.is("objects")) return up.is("definitions");
    if (tag.name.is("enum")) return up.is("enums");
    if (tag.name.is("commnent")) return up.is("enum");
    // A condition or switch, before any other child of its parent.
    return (up.is("object") || up.is("data")) && !parent().plain_child_seen;
}

constexpr bool reading_s::in_order(const tag_s& tag) const {
    if (depth == 0) return tag.value_is("label", "ConfigDataHolder") && tag.value_is("id", "1");
    if (depth == 1) {
        switch (parent().children) {
        case 0:
            return tag.name.is("data") && tag.value_is("label", xmc_n::label_version) &&
                   tag.value_is("type", "Number") &&
                   tag.value("val").number() == xmc_n::document_version;
        case 1: return tag.name.is("definitions");
        case 2:
            return tag.name.is("object") && tag.value_is("label", "Scenario") &&
                   tag.value_is("id", "1000");
        case 3:
            return tag.name.is("object") && tag.value_is("label", "Group") &&
                   tag.value_is("id", "8000");
        default: return false;
        }
    }
    if (depth == 2 && parent().element.is("definitions"))
        return tag.name.is(parent().children == 0 ? "enums" : "objects");
    return true;
}

constexpr bool reading_s::enum_as_in_table(const tag_s& tag) {
    if (!tag.name.is("enum")) return true;
    if (enums >= xmc_enum_c::enum_count) return false;
    const xmc_enum_c& record = xmc_enums_n::enum_table[enums++];
    if (!tag.value_is("label", record.name)) return false;
    // Items are separated by any run of comma, blank or tab.
    view_s list = tag.value("val");
    std::uint64_t position = 0;
    for (const char* at = list.begin; at != list.end;) {
        if (*at == ',' || blank(*at)) {
            ++at;
            continue;
        }
        view_s item{at, at};
        while (at != list.end && *at != ',' && !blank(*at)) ++at;
        item.end = at;
        if (position >= record.count || !item.is(record.items[position].name)) return false;
        ++position;
    }
    return position == record.count;
}

constexpr bool reading_s::version_right(const tag_s& tag) {
    if (!tag.name.is("data")) return true;
    const char* owner = nullptr;
    std::uint64_t version = 0;
    if (tag.value_is("label", xmc_n::label_xmc_version_number)) {
        ++xmc_versions;
        owner = "Scenario";
        version = xmc_n::xmc_version_number;
    } else if (tag.value_is("label", xmc_n::label_group_version_number)) {
        ++group_versions;
        owner = "Group";
        version = xmc_n::group_version_number;
    } else {
        return true;
    }
    view_s val = tag.value("val");
    return enclosing_object().is(owner) && tag.value_is("type", "Number") && val.is_number() &&
           val.number() == version;
}

constexpr bool reading_s::object_row_right(const tag_s& tag) const {
    if (!tag.name.is("object") || depth == 0) return true;
    view_s papa = enclosing_object();
    if (papa.is("ConfigDataHolder")) return true;
    std::uint32_t row = object_row(tag.value("label"));
    std::uint32_t papa_row = object_row(papa);
    if (row == xmc_enums_n::object_not_found || papa_row == xmc_enums_n::object_not_found)
        return false;
    std::uint32_t id = xmc_enums_n::object_tag_table[row].id;
    if (id != 0 && tag.value("id").number() != id) return false;
    return xmc_enums_n::object_tag_table[row].papa == papa_row ||
           (row == papa_row && (row == 17 || row == 57)) ||
           ((row == 32 || row == 35) && papa_row == 0);
}

// Reads up to `line_count` more lines of text; at the end of the text, also the end mark.
constexpr void reading_s::read(std::size_t line_count) {
    const char* const* lines = builtin_template.lines;
    for (; line_count > 0 && next_line < text_line_count; --line_count) {
        std::size_t i = next_line++;
        std::size_t line = i + 1;
        if (!lines[i] || !*lines[i]) {
            fail(shape_fault, line);
            continue;
        }
        tag_s tag = read_tag(lines[i]);
        if ((i == 0) != (tag.form == tag_s::declaration)) fail(shape_fault, line);
        if (i == 0 || tag.form == tag_s::bad || (depth == 0 && i != 1)) {
            if (i != 0) fail(shape_fault, line);
            continue;
        }
        if (tag.form == tag_s::close) {
            if (depth == 0 || !parent().element.is(tag.name)) {
                fail(shape_fault, line);
                continue;
            }
            --depth;
            if (depth == 0 && line != text_line_count) fail(shape_fault, line);
            continue;
        }
        if (!attributes_fit(tag) || !placed_right(tag)) fail(shape_fault, line);
        if (!in_order(tag)) fail(order_fault, line);
        if (!enum_as_in_table(tag)) fail(enum_fault, line);
        if (!version_right(tag)) fail(version_fault, line);
        if (!object_row_right(tag)) fail(object_row_fault, line);
        if (depth > 0) {
            frame_s& up = frames[depth - 1];
            ++up.children;
            if (!is_condition(tag.name)) up.plain_child_seen = true;
        }
        if (tag.form == tag_s::open) {
            if (depth == max_depth) {
                fail(shape_fault, line);
                continue;
            }
            frames[depth++] = {tag.name, tag.value("label"), false, 0};
        }
    }
    if (next_line == text_line_count) {
        // Past the text: everything closed, the end mark in its place, every rule's count met.
        std::size_t past = entry_count + 1;
        const char* mark = lines[text_line_count];
        if (depth != 0 || !mark || *mark) fail(shape_fault, past);
        if (enums != xmc_enum_c::enum_count) fail(enum_fault, past);
        if (xmc_versions != 1 || group_versions != 1) fail(version_fault, past);
    }
}

constexpr std::size_t lines_per_chunk = 48;
constexpr std::size_t chunk_count = (text_line_count + lines_per_chunk - 1) / lines_per_chunk;

constexpr reading_s read_chunk(reading_s reading) {
    reading.read(lines_per_chunk);
    return reading;
}
// The reading after N chunks; each is evaluated on its own, from the one before.
template <std::size_t N> constexpr reading_s after_chunks = read_chunk(after_chunks<N - 1>);
template <> constexpr reading_s after_chunks<0> = reading_s{};

constexpr reading_s whole = after_chunks<chunk_count>;

static_assert(whole.next_line == text_line_count);
static_assert(whole.shape_fault == 0, "a line that is no well-formed item, or one out of place");
static_assert(whole.order_fault == 0, "the root's content out of order");
static_assert(whole.enum_fault == 0, "an enumeration that differs from the code's table");
static_assert(whole.version_fault == 0, "a version setting missing, doubled or changed");
static_assert(whole.object_row_fault == 0, "an object that disagrees with object_tag_table");
static_assert(std::string_view(builtin_template.xmc_version_label) ==
              xmc_n::label_xmc_version_number);
static_assert(std::string_view(builtin_template.group_version_label) ==
              xmc_n::label_group_version_number);

} // namespace

const line_array_s& line_array() { return builtin_template; }

const char* const* lines() { return builtin_template.lines; }

std::size_t join(utl_stream_c& out) {
    return xmc_n::join_lines(builtin_template.lines, out,
                             entry_count * xmc_n::template_reserve_per_entry);
}

} // namespace xmc_template_n
