<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>AreaFrame</name>
    <message>
        <source>Recorded area</source>
        <translation>录制区域</translation>
    </message>
</context>
<context>
    <name>AreaOverlay</name>
    <message>
        <source>Choose the area to record</source>
        <translation>选择录制区域</translation>
    </message>
    <message>
        <source>Whole screen (Ctrl+A)</source>
        <translation>整个屏幕 (Ctrl+A)</translation>
    </message>
    <message>
        <source>Cancel (Esc)</source>
        <translation>取消 (Esc)</translation>
    </message>
    <message>
        <source>Use this area (Enter)</source>
        <translation>使用此区域 (Enter)</translation>
    </message>
    <message>
        <source>Drag to select an area, or click a window. Press Esc to cancel.</source>
        <translation>拖动以选择区域，或单击一个窗口。按 Esc 取消。</translation>
    </message>
    <message>
        <source>Press Enter or double-click to use this area. Press Esc to cancel.</source>
        <translation>按 Enter 或双击以使用此区域。按 Esc 取消。</translation>
    </message>
</context>
<context>
    <name>CountdownOverlay</name>
    <message>
        <source>Recording starts soon</source>
        <translation>即将开始录制</translation>
    </message>
    <message numerus="yes">
        <source>Recording starts in %n second(s)</source>
        <translation>
            <numerusform>%n 秒后开始录制</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>DockApplication</name>
    <message>
        <source>Interrupted recording</source>
        <translation>中断的录制</translation>
    </message>
    <message>
        <source>The recording &quot;%1&quot; was interrupted. Everything up to the interruption was saved. Open it now?</source>
        <translation>录制“%1”被中断。中断前的内容均已保存。现在打开吗？</translation>
    </message>
</context>
<context>
    <name>DockConfigIO</name>
    <message>
        <source>The settings cannot be read from &quot;%1&quot;. The defaults are used.</source>
        <translation>无法从“%1”读取设置。将使用默认值。</translation>
    </message>
    <message>
        <source>The settings file is damaged. Defaults are used for settings that cannot be read. The damaged file was saved as &quot;%1&quot;.</source>
        <translation>设置文件已损坏。无法读取的设置将使用默认值。损坏的文件已另存为“%1”。</translation>
    </message>
    <message>
        <source>The settings file &quot;%1&quot; is damaged. Defaults are used for settings that cannot be read.</source>
        <translation>设置文件“%1”已损坏。无法读取的设置将使用默认值。</translation>
    </message>
    <message>
        <source>The setting &quot;%1&quot; is invalid. The default is used.</source>
        <translation>设置“%1”无效。将使用默认值。</translation>
    </message>
    <message>
        <source>The settings cannot be saved to &quot;%1&quot;. Changes are lost when the program ends.</source>
        <translation>无法将设置保存到“%1”。程序退出后更改将丢失。</translation>
    </message>
</context>
<context>
    <name>ExportOptionsDialog</name>
    <message>
        <source>Export Recording</source>
        <translation>导出录制</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>&amp;Choose File...</source>
        <translation>选择文件(&amp;C)...</translation>
    </message>
    <message>
        <source>As recorded (%1 fps)</source>
        <translation>与录制相同 (%1 fps)</translation>
    </message>
    <message>
        <source>%1 fps</source>
        <translation>%1 fps</translation>
    </message>
    <message>
        <source>F&amp;rame rate</source>
        <translation>帧率(&amp;R)</translation>
    </message>
    <message>
        <source>A higher frame rate makes motion smoother and the file larger</source>
        <translation>帧率越高，动作越流畅，文件越大</translation>
    </message>
    <message>
        <source>Si&amp;ze</source>
        <translation>尺寸(&amp;Z)</translation>
    </message>
    <message>
        <source>Width and height in pixels; a smaller size makes a smaller file</source>
        <translation>宽度和高度（像素）；尺寸越小，文件越小</translation>
    </message>
    <message>
        <source>Return to the recording</source>
        <translation>返回录制</translation>
    </message>
    <message>
        <source>Choose where to save the file, then export</source>
        <translation>选择保存位置，然后导出</translation>
    </message>
    <message>
        <source>Exports the whole recording at %1 speed. The file will be %2 long.</source>
        <translation>以 %1 速度导出整个录制。文件时长 %2。</translation>
    </message>
    <message>
        <source>Exports the part from %1 to %2 at %3 speed. The file will be %4 long.</source>
        <translation>以 %3 速度导出从 %1 到 %2 的部分。文件时长 %4。</translation>
    </message>
</context>
<context>
    <name>GlobalShortcuts</name>
    <message>
        <source>%1 is assigned twice.</source>
        <translation>%1 被分配了两次。</translation>
    </message>
    <message>
        <source>%1 does not work in every program: %2</source>
        <comment>%1 is a key combination, %2 a sentence with the reason</comment>
        <translation>%1 无法在所有程序中使用：%2</translation>
    </message>
    <message>
        <source>Record the screen</source>
        <translation>录制屏幕</translation>
    </message>
    <message>
        <source>Pause and resume the recording</source>
        <translation>暂停和继续录制</translation>
    </message>
    <message>
        <source>Stop the recording</source>
        <translation>停止录制</translation>
    </message>
    <message>
        <source>%1 alone would be taken from every program. Add Ctrl, Alt or Win, or use a function key.</source>
        <translation>单独的 %1 会从所有程序中被占用。请加上 Ctrl、Alt 或 Win，或使用功能键。</translation>
    </message>
</context>
<context>
    <name>NoticeBar</name>
    <message>
        <source>Hide this notice</source>
        <translation>隐藏此提示</translation>
    </message>
</context>
<context>
    <name>PlaybackCanvas</name>
    <message>
        <source>Recording</source>
        <translation>录制</translation>
    </message>
</context>
<context>
    <name>PlaybackPage</name>
    <message>
        <source>No audio output device is available. The recording plays without sound.</source>
        <translation>没有可用的音频输出设备。录制将无声播放。</translation>
    </message>
    <message>
        <source>%1 was exported (%2).</source>
        <translation>%1 已导出 (%2)。</translation>
    </message>
    <message>
        <source>Open &amp;Folder</source>
        <translation>打开文件夹(&amp;F)</translation>
    </message>
    <message>
        <source>%1 frame %2</source>
        <translation>%1 第 %2 帧</translation>
    </message>
    <message>
        <source>Save Frame</source>
        <translation>保存画面</translation>
    </message>
    <message>
        <source>PNG image</source>
        <translation>PNG 图片</translation>
    </message>
    <message>
        <source>%1 was saved.</source>
        <translation>%1 已保存。</translation>
    </message>
    <message>
        <source>The frame cannot be saved.</source>
        <translation>无法保存画面。</translation>
    </message>
    <message>
        <source>The frame was copied.</source>
        <translation>画面已复制。</translation>
    </message>
    <message>
        <source>Not all of the recorded sound can be played: %1</source>
        <translation>部分录制的声音无法播放：%1</translation>
    </message>
</context>
<context>
    <name>PlaybackStrip</name>
    <message>
        <source>Trim</source>
        <translation>裁剪</translation>
    </message>
    <message>
        <source>&amp;End Here	O</source>
        <translation>到此处结束(&amp;E)	O</translation>
    </message>
    <message>
        <source>&amp;Whole Recording</source>
        <translation>整个录制(&amp;W)</translation>
    </message>
    <message>
        <source>Full screen (F)</source>
        <translation>全屏 (F)</translation>
    </message>
    <message>
        <source>Record again</source>
        <translation>重新录制</translation>
    </message>
    <message>
        <source>Export...</source>
        <translation>导出...</translation>
    </message>
    <message>
        <source>Export as MP4, GIF, APNG or WebP (Ctrl+E)</source>
        <translation>导出为 MP4、GIF、APNG 或 WebP (Ctrl+E)</translation>
    </message>
    <message>
        <source>&amp;Start Here	I</source>
        <translation>从此处开始(&amp;S)	I</translation>
    </message>
    <message>
        <source>Save or copy this frame</source>
        <translation>保存或复制当前画面</translation>
    </message>
    <message>
        <source>&amp;Save Frame...	Ctrl+S</source>
        <translation>保存画面(&amp;S)...	Ctrl+S</translation>
    </message>
    <message>
        <source>&amp;Copy Frame	Ctrl+C</source>
        <translation>复制画面(&amp;C)	Ctrl+C</translation>
    </message>
    <message>
        <source>Playback settings</source>
        <translation>播放设置</translation>
    </message>
</context>
<context>
    <name>PlaybackWindow</name>
    <message>
        <source>&amp;Open Folder</source>
        <translation>打开文件夹(&amp;O)</translation>
    </message>
    <message>
        <source>&amp;Try Again</source>
        <translation>重试(&amp;T)</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>关闭(&amp;C)</translation>
    </message>
    <message>
        <source>This recording cannot be played</source>
        <translation>无法播放此录制</translation>
    </message>
    <message>
        <source>Show the files of the recording in the file manager</source>
        <translation>在文件管理器中显示录制的文件</translation>
    </message>
    <message>
        <source>Load the recording again</source>
        <translation>重新加载录制</translation>
    </message>
    <message>
        <source>Close this window</source>
        <translation>关闭此窗口</translation>
    </message>
    <message>
        <source>This recording no longer exists</source>
        <translation>此录制已不存在</translation>
    </message>
    <message>
        <source>The folder %1 was moved, renamed or deleted.</source>
        <translation>文件夹 %1 已被移动、重命名或删除。</translation>
    </message>
    <message numerus="yes">
        <source>The metadata of this recording is missing or damaged. It plays at %n frame(s) per second.</source>
        <translation>
            <numerusform>此录制的元数据缺失或损坏。将以每秒 %n 帧播放。</numerusform>
        </translation>
    </message>
    <message>
        <source>This recording was interrupted by a crash. Everything recorded before the crash was saved.</source>
        <translation>此录制因崩溃而中断。崩溃前录下的内容均已保存。</translation>
    </message>
</context>
<context>
    <name>RecordToolbar</name>
    <message>
        <source>Screen recorder</source>
        <translation>屏幕录制</translation>
    </message>
    <message>
        <source>Choose the area to record</source>
        <translation>选择录制区域</translation>
    </message>
    <message>
        <source>Recordings</source>
        <translation>录制列表</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Hide toolbar</source>
        <translation>隐藏工具栏</translation>
    </message>
</context>
<context>
    <name>RecorderUi</name>
    <message>
        <source>Record keystrokes?</source>
        <translation>录制按键？</translation>
    </message>
    <message>
        <source>Everything you type will be recorded in every program, including passwords.</source>
        <translation>您在任何程序中键入的内容都会被录下，包括密码。</translation>
    </message>
    <message>
        <source>The keyboard button on the toolbar turns this off, even during a recording.</source>
        <translation>工具栏上的键盘按钮可将其关闭，录制过程中也可以。</translation>
    </message>
    <message>
        <source>Record Keystrokes</source>
        <translation>录制按键</translation>
    </message>
    <message>
        <source>Record Without Keystrokes</source>
        <translation>不录制按键</translation>
    </message>
    <message>
        <source>Don't ask again</source>
        <translation>不再询问</translation>
    </message>
    <message>
        <source>Press Esc to cancel</source>
        <translation>按 Esc 取消</translation>
    </message>
    <message>
        <source>Press %1 to stop the recording</source>
        <translation>按 %1 停止录制</translation>
    </message>
</context>
<context>
    <name>RecordingController</name>
    <message>
        <source>The disk is almost full: %1 left.</source>
        <translation>磁盘即将写满：剩余 %1。</translation>
    </message>
    <message>
        <source>The recording could not be started.
%1</source>
        <translation>录制未能开始。
%1</translation>
    </message>
    <message numerus="yes">
        <source>The disk is almost full: %1 left, enough for about %n minute(s).</source>
        <translation>
            <numerusform>磁盘即将写满：剩余 %1，约可再录 %n 分钟。</numerusform>
        </translation>
    </message>
    <message>
        <source>The disk is full. The recording was stopped and saved.</source>
        <translation>磁盘已满。录制已停止并保存。</translation>
    </message>
    <message>
        <source>The folder of the recording was deleted or moved. The recording was stopped.</source>
        <translation>录制的文件夹已被删除或移动。录制已停止。</translation>
    </message>
    <message>
        <source>There is not enough disk space for a recording.</source>
        <translation>磁盘空间不足，无法录制。</translation>
    </message>
    <message>
        <source>The folder &quot;%1&quot; cannot be created. Choose another folder in the settings.</source>
        <translation>无法创建文件夹“%1”。请在设置中另选一个文件夹。</translation>
    </message>
    <message>
        <source>The screen can no longer be recorded. The recording was stopped; everything up to now was saved.
%1</source>
        <translation>无法继续录制屏幕。录制已停止；此前的内容均已保存。
%1</translation>
    </message>
    <message>
        <source>The recording is incomplete.
%1</source>
        <translation>录制不完整。
%1</translation>
    </message>
    <message>
        <source>%1
The recording continues without it.</source>
        <translation>%1
录制将在没有它的情况下继续。</translation>
    </message>
    <message>
        <source>A screen was changed or disconnected, and the recorded area is no longer visible. The recording was stopped and saved.</source>
        <translation>屏幕已更改或断开，录制区域已不可见。录制已停止并保存。</translation>
    </message>
    <message>
        <source>Clicks and keys are not recorded: %1</source>
        <translation>未录制点击和按键：%1</translation>
    </message>
</context>
<context>
    <name>RecordingExport</name>
    <message>
        <source>Export Recording</source>
        <translation>导出录制</translation>
    </message>
    <message>
        <source>GIF animation</source>
        <translation>GIF 动画</translation>
    </message>
    <message>
        <source>MP4 video</source>
        <translation>MP4 视频</translation>
    </message>
    <message>
        <source>WebP animation</source>
        <translation>WebP 动画</translation>
    </message>
    <message>
        <source>Animated PNG</source>
        <translation>动态 PNG</translation>
    </message>
</context>
<context>
    <name>RecordingsFolder</name>
    <message>
        <source>The folder cannot be renamed.</source>
        <translation>无法重命名文件夹。</translation>
    </message>
    <message>
        <source>Some files cannot be deleted.</source>
        <translation>部分文件无法删除。</translation>
    </message>
    <message>
        <source>A name must not be empty, start with a dot or contain a slash.</source>
        <translation>名称不能为空，不能以点开头，也不能包含斜杠。</translation>
    </message>
    <message>
        <source>That name is taken.</source>
        <translation>该名称已被使用。</translation>
    </message>
</context>
<context>
    <name>RecordingsModel</name>
    <message>
        <source>Recovered after a crash</source>
        <translation>崩溃后恢复</translation>
    </message>
    <message>
        <source>Recording in progress</source>
        <translation>正在录制</translation>
    </message>
</context>
<context>
    <name>RecordingsWindow</name>
    <message>
        <source>Recordings</source>
        <translation>录制列表</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>重命名</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>搜索</translation>
    </message>
    <message>
        <source>Search by name</source>
        <translation>按名称搜索</translation>
    </message>
    <message>
        <source>&amp;New Recording</source>
        <translation>新建录制(&amp;N)</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>打开(&amp;O)</translation>
    </message>
    <message>
        <source>&amp;Rename</source>
        <translation>重命名(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Show in Folder</source>
        <translation>在文件夹中显示(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>删除(&amp;D)</translation>
    </message>
    <message>
        <source>No recordings yet</source>
        <translation>还没有录制</translation>
    </message>
    <message>
        <source>&amp;Record</source>
        <translation>录制(&amp;R)</translation>
    </message>
    <message numerus="yes">
        <source>%n recording(s) moved to the trash.</source>
        <translation>
            <numerusform>已将 %n 个录制移到回收站。</numerusform>
        </translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>%1 was not deleted.</source>
        <translation>%1 未删除。</translation>
    </message>
    <message>
        <source>The recording was not renamed.</source>
        <translation>录制未重命名。</translation>
    </message>
    <message>
        <source>Show only recordings whose name contains this text (Ctrl+F)</source>
        <translation>只显示名称包含此文字的录制 (Ctrl+F)</translation>
    </message>
    <message>
        <source>Record the screen</source>
        <translation>录制屏幕</translation>
    </message>
    <message>
        <source>Play the recording (Enter)</source>
        <translation>播放录制 (Enter)</translation>
    </message>
    <message>
        <source>Rename the recording (F2)</source>
        <translation>重命名录制 (F2)</translation>
    </message>
    <message>
        <source>Show the files of the recording in the file manager</source>
        <translation>在文件管理器中显示录制的文件</translation>
    </message>
    <message>
        <source>Move the recording to the trash (Del)</source>
        <translation>将录制移到回收站 (Del)</translation>
    </message>
    <message>
        <source>Recordings are saved in %1.</source>
        <translation>录制保存在 %1。</translation>
    </message>
    <message numerus="yes">
        <source>%n recording(s) cannot be moved to the trash. Delete permanently?</source>
        <translation>
            <numerusform>%n 个录制无法移到回收站。要永久删除吗？</numerusform>
        </translation>
    </message>
    <message>
        <source>Open</source>
        <translation>打开</translation>
    </message>
    <message numerus="yes">
        <source>Open %n recording(s), each in its own window?</source>
        <translation>
            <numerusform>打开 %n 个录制，每个都在单独的窗口中？</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>SaveFileDialog</name>
    <message>
        <source>Replace File?</source>
        <translation>替换文件？</translation>
    </message>
    <message>
        <source>%1 already exists. Do you want to replace it?</source>
        <translation>%1 已存在。要替换吗？</translation>
    </message>
</context>
<context>
    <name>SettingsDialog</name>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>录制</translation>
    </message>
    <message>
        <source>Shortcuts</source>
        <translation>快捷键</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>录制</translation>
    </message>
    <message>
        <source>Pause and resume</source>
        <translation>暂停与继续</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>浅色</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>深色</translation>
    </message>
    <message>
        <source>All buttons</source>
        <translation>全部按钮</translation>
    </message>
    <message>
        <source>None</source>
        <translation>无</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>关闭(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Frame rate</source>
        <translation>帧率(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Start</source>
        <translation>开始(&amp;S)</translation>
    </message>
    <message>
        <source>Record the &amp;mouse</source>
        <translation>录制鼠标(&amp;M)</translation>
    </message>
    <message>
        <source>C&amp;hange...</source>
        <translation>更改(&amp;H)...</translation>
    </message>
    <message>
        <source>&amp;Default</source>
        <translation>默认(&amp;D)</translation>
    </message>
    <message>
        <source>&amp;Theme</source>
        <translation>主题(&amp;T)</translation>
    </message>
    <message>
        <source>Colors of the windows</source>
        <translation>窗口的颜色</translation>
    </message>
    <message>
        <source>T&amp;oolbar</source>
        <translation>工具栏(&amp;O)</translation>
    </message>
    <message>
        <source>&amp;Language</source>
        <translation>语言(&amp;L)</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>声音</translation>
    </message>
    <message>
        <source>General</source>
        <translation>常规</translation>
    </message>
    <message>
        <source>Changes are saved automatically (Esc)</source>
        <translation>更改会自动保存 (Esc)</translation>
    </message>
    <message>
        <source>Save recordings in</source>
        <translation>录制保存在</translation>
    </message>
    <message>
        <source>%1 fps</source>
        <translation>%1 fps</translation>
    </message>
    <message>
        <source>A higher frame rate shows motion better and takes more disk space</source>
        <translation>帧率越高，动作越流畅，占用磁盘空间越大</translation>
    </message>
    <message>
        <source>Immediately</source>
        <translation>立即</translation>
    </message>
    <message numerus="yes">
        <source>After %n second(s)</source>
        <translation>
            <numerusform>%n 秒后</numerusform>
        </translation>
    </message>
    <message>
        <source>Delay after you press the record button</source>
        <translation>按下录制按钮后的延迟</translation>
    </message>
    <message>
        <source>Pointer, clicks and wheel; you can hide them later</source>
        <translation>指针、点击和滚轮；之后可以隐藏</translation>
    </message>
    <message>
        <source>Record &amp;keystrokes</source>
        <translation>录制按键(&amp;K)</translation>
    </message>
    <message>
        <source>In every program, including passwords</source>
        <translation>在所有程序中，包括密码</translation>
    </message>
    <message>
        <source>&amp;Ask before recording keystrokes</source>
        <translation>录制按键前询问(&amp;A)</translation>
    </message>
    <message>
        <source>At the start of each recording</source>
        <translation>每次录制开始时</translation>
    </message>
    <message>
        <source>Choose another folder for recordings</source>
        <translation>另选录制文件夹</translation>
    </message>
    <message>
        <source>Save recordings in your videos folder</source>
        <translation>将录制保存在视频文件夹中</translation>
    </message>
    <message>
        <source>Choose Folder for Recordings</source>
        <translation>选择录制文件夹</translation>
    </message>
    <message>
        <source>These shortcuts work in every program.</source>
        <translation>这些快捷键在所有程序中都有效。</translation>
    </message>
    <message>
        <source>Same as desktop</source>
        <translation>跟随桌面</translation>
    </message>
    <message>
        <source>Buttons on the toolbar</source>
        <translation>工具栏上的按钮</translation>
    </message>
    <message>
        <source>Essential buttons only</source>
        <translation>仅基本按钮</translation>
    </message>
    <message>
        <source>Language of the user interface</source>
        <translation>界面语言</translation>
    </message>
    <message>
        <source>Restart the program to change the language.</source>
        <translation>重启程序后语言才会更改。</translation>
    </message>
    <message>
        <source>Press the new shortcut</source>
        <translation>请按下新的快捷键</translation>
    </message>
    <message>
        <source>Remove shortcut: %1</source>
        <translation>移除快捷键：%1</translation>
    </message>
    <message>
        <source>&amp;Read clicks and keys from the devices</source>
        <translation>从设备读取点击和按键(&amp;R)</translation>
    </message>
    <message>
        <source>Wayland shows them to no program. Your user must be in the group &quot;input&quot;.</source>
        <translation>Wayland 不向任何程序显示点击和按键。您的用户必须属于“input”组。</translation>
    </message>
</context>
<context>
    <name>SettingsSidebar</name>
    <message>
        <source>Pointer</source>
        <translation>指针</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>按键</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>时间</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>声音</translation>
    </message>
    <message>
        <source>Playback settings</source>
        <translation>播放设置</translation>
    </message>
    <message>
        <source>Pointer and clicks</source>
        <translation>指针与点击</translation>
    </message>
    <message>
        <source>Keystrokes</source>
        <translation>按键</translation>
    </message>
    <message>
        <source>Time display</source>
        <translation>时间显示</translation>
    </message>
    <message>
        <source>System sound and microphone</source>
        <translation>系统声音与麦克风</translation>
    </message>
</context>
<context>
    <name>TrackSwitches</name>
    <message>
        <source>System sound</source>
        <translation>系统声音</translation>
    </message>
    <message>
        <source>System sound is recorded. Click to exclude it.</source>
        <translation>将录制系统声音。点击可排除。</translation>
    </message>
    <message>
        <source>System sound is not recorded. Click to include it.</source>
        <translation>不录制系统声音。点击可加入。</translation>
    </message>
    <message>
        <source>Microphone</source>
        <translation>麦克风</translation>
    </message>
    <message>
        <source>The microphone is recorded. Click to exclude it.</source>
        <translation>将录制麦克风。点击可排除。</translation>
    </message>
    <message>
        <source>The microphone is not recorded. Click to include it.</source>
        <translation>不录制麦克风。点击可加入。</translation>
    </message>
    <message>
        <source>Mouse</source>
        <translation>鼠标</translation>
    </message>
    <message>
        <source>The mouse is recorded. Click to exclude it.</source>
        <translation>将录制鼠标。点击可排除。</translation>
    </message>
    <message>
        <source>The mouse is not recorded. Click to include it.</source>
        <translation>不录制鼠标。点击可加入。</translation>
    </message>
    <message>
        <source>Keystrokes</source>
        <translation>按键</translation>
    </message>
    <message>
        <source>Keystrokes are recorded, including passwords. Click to exclude them before you type anything private.</source>
        <translation>将录制按键，包括密码。键入私密内容前请点击以排除。</translation>
    </message>
    <message>
        <source>Keystrokes are not recorded. Click to include them.</source>
        <translation>不录制按键。点击可加入。</translation>
    </message>
    <message>
        <source>Sound cannot be turned on or off during a recording.</source>
        <translation>录制过程中无法开启或关闭声音。</translation>
    </message>
    <message>
        <source>This can only be turned on before a recording.</source>
        <translation>只能在录制前开启。</translation>
    </message>
</context>
<context>
    <name>TrayIcon</name>
    <message>
        <source>Record</source>
        <translation>录制</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>暂停</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>Recordings</source>
        <translation>录制列表</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>退出</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>继续</translation>
    </message>
    <message>
        <source>Screen recorder</source>
        <translation>屏幕录制</translation>
    </message>
    <message>
        <source>Recording, %1</source>
        <translation>正在录制，%1</translation>
    </message>
    <message>
        <source>Recording paused, %1</source>
        <translation>录制已暂停，%1</translation>
    </message>
    <message>
        <source>Show toolbar</source>
        <translation>显示工具栏</translation>
    </message>
    <message>
        <source>Recording starts soon</source>
        <translation>即将开始录制</translation>
    </message>
</context>
</TS>
