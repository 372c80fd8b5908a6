#pragma once

namespace tarnwick {

class Applications;
class AudioDevices;
class BluetoothDevices;
class Calendars;
class ChildProcesses;
class DesktopAppearance;
class DeviceSharing;
class DisplayBrightness;
class FileIcons;
class FileManager;
class Folders;
class ForeignProcesses;
class GrowingFiles;
class HapticPerformer;
class ImageDecoder;
class MediaKeys;
class NotificationCenter;
class PermissionRequests;
class PowerSources;
class Scheduler;
class Screens;
class SoundPlayer;
class SystemLog;
class UserDefaults;
class WindowActivation;
class WindowList;

/// The desktop that the program runs on: one implementation of each port. All of them outlive whatever uses
/// them.
struct Desktop {
  Scheduler& scheduler;
  NotificationCenter& notifications;
  UserDefaults& defaults;
  Folders& folders;
  Screens& screens;
  WindowList& windows;
  SoundPlayer& sounds;
  HapticPerformer& haptics;
  ChildProcesses& processes;
  Applications& applications;
  ImageDecoder& images;
  SystemLog& log;
  AudioDevices& audioDevices;
  MediaKeys& mediaKeys;
  DisplayBrightness& brightness;
  PowerSources& powerSources;
  BluetoothDevices& bluetooth;
  Calendars& calendars;
  const DesktopAppearance& appearance;
  FileIcons& fileIcons;
  FileManager& fileManager;
  DeviceSharing& sharing;
  ForeignProcesses& foreignProcesses;
  GrowingFiles& growingFiles;
  WindowActivation& activation;
  PermissionRequests& permissions;
};

}  // namespace tarnwick
