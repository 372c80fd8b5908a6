#pragma once
#include "base/Scheduler.h"
#include "base/UserDefaults.h"
#include "platform/Applications.h"
#include "platform/AudioDevices.h"
#include "platform/BluetoothDevices.h"
#include "platform/Calendars.h"
#include "platform/ChildProcesses.h"
#include "platform/DisplayBrightness.h"
#include "platform/Folders.h"
#include "platform/HapticPerformer.h"
#include "platform/ImageDecoder.h"
#include "platform/MediaKeys.h"
#include "platform/NotificationCenter.h"
#include "platform/Pointer.h"
#include "platform/PowerSources.h"
#include "platform/Screens.h"
#include "platform/SoundPlayer.h"
#include "platform/SystemLog.h"
#include "platform/WindowList.h"

namespace tarnwick {

/// The desktop that the program runs on: one implementation of each port. All of them outlive whatever uses
/// them.
struct Desktop {
  Scheduler& scheduler;
  NotificationCenter& notifications;
  UserDefaults& defaults;
  Folders& folders;
  Screens& screens;
  Pointer& pointer;
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
};

}  // namespace tarnwick
