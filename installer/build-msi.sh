#!/usr/bin/env bash
# Builds one Windows Installer package of the control with wixl.
#   build-msi.sh <output.msi> <x64|x86> <perMachine|perUser> <version> <folder of FileEncoder.ocx>
#                <clsid> <libid> <interface id> <events id>
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
output=$(realpath -m "$1")
arch=$2 scope=$3 version=$4 folder=$5
clsid=$6 libid=$7 interface=$8 events=$9
tmp="$output.tmp"
rm -f "$tmp"
# wixl finds the files relative to the folder it runs in.
(cd "$folder" && wixl -a "$arch" -o "$tmp" \
  -D Version="$version" -D Arch="$arch" -D Scope="$scope" \
  -D Clsid="$clsid" -D Libid="$libid" -D InterfaceId="$interface" -D EventsId="$events" \
  "$here/FileEncoder.wxs")
# Releases differ in the fourth part of the version, which Windows Installer
# ignores when it compares versions: the upgrade row must also take an
# installed package of the same three-part version, or a new build would
# install beside the old one. (0x200: the maximum version is inclusive; 0x1:
# keep the feature states.)
# (msibuild has no working UPDATE: the row is deleted and inserted again.)
upgrade_code=$(msiinfo export "$tmp" Property | tr -d '\r' | awk -F'\t' '$1 == "UpgradeCode" { print $2 }')
msibuild "$tmp" -q "DELETE FROM \`Upgrade\` WHERE \`Attributes\` = 1"
msibuild "$tmp" -q "INSERT INTO \`Upgrade\` (\`UpgradeCode\`, \`VersionMax\`, \`Attributes\`, \`ActionProperty\`) VALUES ('$upgrade_code', '$version', 513, 'WIX_UPGRADE_DETECTED')"
mv "$tmp" "$output"
