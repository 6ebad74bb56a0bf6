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
        <source>Drag to choose an area, or click a window. Esc cancels.</source>
        <translation>拖动以选择区域，或单击一个窗口。按 Esc 取消。</translation>
    </message>
    <message>
        <source>Enter or a double click uses this area. Esc cancels.</source>
        <translation>按 Enter 或双击以使用此区域。按 Esc 取消。</translation>
    </message>
</context>
<context>
    <name>CountdownOverlay</name>
    <message>
        <source>Recording starts</source>
        <translation>即将开始录制</translation>
    </message>
    <message>
        <source>Recording starts in %1 s</source>
        <translation>%1 秒后开始录制</translation>
    </message>
</context>
<context>
    <name>DockApplication</name>
    <message>
        <source>Interrupted recording</source>
        <translation>中断的录制</translation>
    </message>
    <message>
        <source>The recording "%1" was interrupted before it was complete. What was recorded is kept. Open it now?</source>
        <translation>录制“%1”在完成前被中断。已录下的内容已保留。现在打开吗？</translation>
    </message>
</context>
<context>
    <name>DockConfigIO</name>
    <message>
        <source>The settings cannot be read from "%1". The defaults are used.</source>
        <translation>无法从“%1”读取设置。将使用默认值。</translation>
    </message>
    <message>
        <source>The settings file is damaged. The defaults are used where it cannot be read; it is kept as "%1".</source>
        <translation>设置文件已损坏。无法读取之处使用默认值；原文件保留为“%1”。</translation>
    </message>
    <message>
        <source>The settings file "%1" is damaged. The defaults are used where it cannot be read.</source>
        <translation>设置文件“%1”已损坏。无法读取之处使用默认值。</translation>
    </message>
    <message>
        <source>The setting "%1" makes no sense. Its default is used.</source>
        <translation>设置“%1”无效。将使用其默认值。</translation>
    </message>
    <message>
        <source>The settings cannot be saved to "%1". They are lost when the program ends.</source>
        <translation>无法将设置保存到“%1”。程序退出后将丢失。</translation>
    </message>
</context>
<context>
    <name>ExportOptionsDialog</name>
    <message>
        <source>Export Recording</source>
        <translation>导出录制</translation>
    </message>
    <message>
        <source>As recorded (%1)</source>
        <translation>与录制相同 (%1)</translation>
    </message>
    <message>
        <source>%1 x %2</source>
        <translation>%1 x %2</translation>
    </message>
    <message>
        <source>F&amp;rames a second</source>
        <translation>每秒帧数(&amp;R)</translation>
    </message>
    <message>
        <source>More frames make smoother motion and a larger file</source>
        <translation>帧数越多，动作越流畅，文件越大</translation>
    </message>
    <message>
        <source>Picture si&amp;ze</source>
        <translation>画面大小(&amp;Z)</translation>
    </message>
    <message>
        <source>Pixels of the file; a smaller picture makes a smaller file</source>
        <translation>文件的像素；画面越小，文件越小</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Goes back to the recording</source>
        <translation>返回录制</translation>
    </message>
    <message>
        <source>&amp;Choose File...</source>
        <translation>选择文件(&amp;C)...</translation>
    </message>
    <message>
        <source>Asks where to save the file, then exports</source>
        <translation>选择保存位置，然后导出</translation>
    </message>
    <message>
        <source>Exports the whole recording at speed %1. The file plays for %2.</source>
        <translation>以 %1 速度导出整个录制。文件时长 %2。</translation>
    </message>
    <message>
        <source>Exports the part from %1 to %2 at speed %3. The file plays for %4.</source>
        <translation>以 %3 速度导出从 %1 到 %2 的部分。文件时长 %4。</translation>
    </message>
</context>
<context>
    <name>GlobalShortcuts</name>
    <message>
        <source>%1 is used twice.</source>
        <translation>%1 被使用了两次。</translation>
    </message>
    <message>
        <source>%1 does not work everywhere: %2</source>
        <comment>%1 is a key combination, %2 a sentence that says why</comment>
        <translation>%1 无法在任何程序中使用：%2</translation>
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
        <source>Picture of the recording</source>
        <translation>录制的画面</translation>
    </message>
</context>
<context>
    <name>PlaybackStrip</name>
    <message>
        <source>Trim</source>
        <translation>裁剪</translation>
    </message>
    <message>
        <source>&amp;Begin Here	I</source>
        <translation>从此处开始(&amp;B)	I</translation>
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
        <source>Present picture</source>
        <translation>当前画面</translation>
    </message>
    <message>
        <source>&amp;Save Picture...	Ctrl+S</source>
        <translation>保存画面(&amp;S)...	Ctrl+S</translation>
    </message>
    <message>
        <source>&amp;Copy Picture	Ctrl+C</source>
        <translation>复制画面(&amp;C)	Ctrl+C</translation>
    </message>
    <message>
        <source>Full screen (F)</source>
        <translation>全屏 (F)</translation>
    </message>
    <message>
        <source>Settings of picture and sound</source>
        <translation>画面与声音设置</translation>
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
</context>
<context>
    <name>PlaybackWindow</name>
    <message>
        <source>This recording cannot be shown</source>
        <translation>无法显示此录制</translation>
    </message>
    <message>
        <source>&amp;Open Folder</source>
        <translation>打开文件夹(&amp;O)</translation>
    </message>
    <message>
        <source>Shows the files of the recording in the file manager</source>
        <translation>在文件管理器中显示录制的文件</translation>
    </message>
    <message>
        <source>&amp;Try Again</source>
        <translation>重试(&amp;T)</translation>
    </message>
    <message>
        <source>Loads the recording once more</source>
        <translation>重新加载录制</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>关闭(&amp;C)</translation>
    </message>
    <message>
        <source>Closes this window</source>
        <translation>关闭此窗口</translation>
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
        <source>This recording is no longer there</source>
        <translation>此录制已不存在</translation>
    </message>
    <message>
        <source>Its folder %1 was moved, renamed or deleted.</source>
        <translation>其文件夹 %1 已被移动、重命名或删除。</translation>
    </message>
    <message numerus="yes">
        <source>The data about this recording is missing or damaged. It is shown at %n frame(s) a second.</source>
        <translation>
            <numerusform>此录制的数据缺失或损坏。将以每秒 %n 帧显示。</numerusform>
        </translation>
    </message>
    <message>
        <source>This recording was cut short by a crash. What was recorded until then is here.</source>
        <translation>此录制因崩溃而中断。中断前录下的内容在这里。</translation>
    </message>
    <message>
        <source>%1 picture %2</source>
        <translation>%1 画面 %2</translation>
    </message>
    <message>
        <source>Save Picture</source>
        <translation>保存画面</translation>
    </message>
    <message>
        <source>PNG picture</source>
        <translation>PNG 图片</translation>
    </message>
    <message>
        <source>%1 was saved.</source>
        <translation>%1 已保存。</translation>
    </message>
    <message>
        <source>The picture cannot be saved.</source>
        <translation>无法保存画面。</translation>
    </message>
    <message>
        <source>The picture was copied.</source>
        <translation>画面已复制。</translation>
    </message>
    <message>
        <source>There is no device that plays the sound. The picture is played without it.</source>
        <translation>没有可播放声音的设备，仅播放画面。</translation>
    </message>
</context>
<context>
    <name>RecordToolbar</name>
    <message>
        <source>Screen recorder</source>
        <translation>屏幕录制</translation>
    </message>
    <message>
        <source>System sound</source>
        <translation>系统声音</translation>
    </message>
    <message>
        <source>System sound is recorded. Click to leave it out</source>
        <translation>正在录制系统声音。点击可关闭</translation>
    </message>
    <message>
        <source>System sound is not recorded. Click to record it</source>
        <translation>未录制系统声音。点击可录制</translation>
    </message>
    <message>
        <source>Microphone</source>
        <translation>麦克风</translation>
    </message>
    <message>
        <source>The microphone is recorded. Click to leave it out</source>
        <translation>正在录制麦克风。点击可关闭</translation>
    </message>
    <message>
        <source>The microphone is not recorded. Click to record it</source>
        <translation>未录制麦克风。点击可录制</translation>
    </message>
    <message>
        <source>Mouse</source>
        <translation>鼠标</translation>
    </message>
    <message>
        <source>The mouse is recorded. Click to leave it out</source>
        <translation>正在录制鼠标。点击可关闭</translation>
    </message>
    <message>
        <source>The mouse is not recorded. Click to record it</source>
        <translation>未录制鼠标。点击可录制</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>按键</translation>
    </message>
    <message>
        <source>Keys are recorded, passwords too. Click before you type what nobody shall see</source>
        <translation>正在录制按键，包括密码。输入不想被人看到的内容前请点击关闭</translation>
    </message>
    <message>
        <source>Keys are not recorded. Click to record them</source>
        <translation>未录制按键。点击可录制</translation>
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
        <source>Hide the toolbar</source>
        <translation>隐藏工具栏</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Sound cannot be switched during a recording</source>
        <translation>录制过程中无法切换声音</translation>
    </message>
    <message>
        <source>This can be switched on only before a recording</source>
        <translation>只能在录制前开启</translation>
    </message>
</context>
<context>
    <name>RecorderUi</name>
    <message>
        <source>Recording keys</source>
        <translation>录制按键</translation>
    </message>
    <message>
        <source>The keys that you type will be recorded, in whichever program: passwords, too.</source>
        <translation>您在任何程序中键入的按键都会被录下，包括密码。</translation>
    </message>
    <message>
        <source>The keyboard button of the toolbar switches them off, also during a recording.</source>
        <translation>工具栏的键盘按钮可将其关闭，录制过程中也可以。</translation>
    </message>
    <message>
        <source>Record keys</source>
        <translation>录制按键</translation>
    </message>
    <message>
        <source>Record without keys</source>
        <translation>不录制按键</translation>
    </message>
    <message>
        <source>Do not ask again</source>
        <translation>不再询问</translation>
    </message>
    <message>
        <source>Esc cancels</source>
        <translation>按 Esc 取消</translation>
    </message>
    <message>
        <source>%1 stops the recording</source>
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
        <source>The disk is almost full: %1 left, enough for about %2 min.</source>
        <translation>磁盘即将写满：剩余 %1，约可再录 %2 分钟。</translation>
    </message>
    <message>
        <source>The disk is full. The recording has ended and was saved.</source>
        <translation>磁盘已满。录制已结束并保存。</translation>
    </message>
    <message>
        <source>The folder of the recording was deleted or moved. The recording has ended.</source>
        <translation>录制的文件夹已被删除或移动。录制已结束。</translation>
    </message>
    <message>
        <source>There is not enough room on the disk for a recording.</source>
        <translation>磁盘空间不足，无法录制。</translation>
    </message>
    <message>
        <source>The folder "%1" cannot be created. Choose another one in the settings.</source>
        <translation>无法创建文件夹“%1”。请在设置中另选一个。</translation>
    </message>
    <message>
        <source>The screen cannot be recorded any more. The recording has ended; what was recorded until now is kept.
%1</source>
        <translation>无法继续录制屏幕。录制已结束；已录下的内容已保留。
%1</translation>
    </message>
    <message>
        <source>%1
The recording goes on without it.</source>
        <translation>%1
录制将在没有它的情况下继续。</translation>
    </message>
    <message>
        <source>A screen was changed or unplugged, and the recorded area is no longer on it. The recording has ended and was saved.</source>
        <translation>屏幕已更改或拔除，录制区域已不在屏幕上。录制已结束并保存。</translation>
    </message>
    <message>
        <source>The recording could not be started.
%1</source>
        <translation>录制未能开始。
%1</translation>
    </message>
    <message>
        <source>The recording lacks something.
%1</source>
        <translation>录制不完整。
%1</translation>
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
        <source>Some of its files cannot be deleted.</source>
        <translation>其中一些文件无法删除。</translation>
    </message>
    <message>
        <source>A name is not empty, does not begin with a dot and contains no slash.</source>
        <translation>名称不能为空，不能以点开头，也不能包含斜杠。</translation>
    </message>
    <message>
        <source>There is something of that name already.</source>
        <translation>已有同名的文件。</translation>
    </message>
    <message>
        <source>The folder cannot be renamed.</source>
        <translation>无法重命名文件夹。</translation>
    </message>
</context>
<context>
    <name>RecordingsModel</name>
    <message>
        <source>Being recorded</source>
        <translation>正在录制</translation>
    </message>
    <message>
        <source>Recovered after a crash</source>
        <translation>崩溃后恢复</translation>
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
        <source>Not renamed.</source>
        <translation>未重命名。</translation>
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
        <source>Shows only recordings whose names contain this (Ctrl+F)</source>
        <translation>只显示名称包含此内容的录制 (Ctrl+F)</translation>
    </message>
    <message>
        <source>&amp;New Recording</source>
        <translation>新建录制(&amp;N)</translation>
    </message>
    <message>
        <source>Records the screen</source>
        <translation>录制屏幕</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>打开(&amp;O)</translation>
    </message>
    <message>
        <source>Plays the recording (Enter)</source>
        <translation>播放录制 (Enter)</translation>
    </message>
    <message>
        <source>&amp;Rename</source>
        <translation>重命名(&amp;R)</translation>
    </message>
    <message>
        <source>Gives the recording another name (F2)</source>
        <translation>为录制改名 (F2)</translation>
    </message>
    <message>
        <source>&amp;Show in Folder</source>
        <translation>在文件夹中显示(&amp;S)</translation>
    </message>
    <message>
        <source>Shows the files of the recording in the file manager</source>
        <translation>在文件管理器中显示录制的文件</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>删除(&amp;D)</translation>
    </message>
    <message>
        <source>Moves the recording to the trash (Del)</source>
        <translation>将录制移到回收站 (Del)</translation>
    </message>
    <message>
        <source>No recordings yet</source>
        <translation>还没有录制</translation>
    </message>
    <message>
        <source>Recordings are kept in %1.</source>
        <translation>录制保存在 %1。</translation>
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
    <message numerus="yes">
        <source>%n recording(s) cannot be moved to the trash. Delete for good?</source>
        <translation>
            <numerusform>%n 个录制无法移到回收站。要彻底删除吗？</numerusform>
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
</context>
<context>
    <name>SaveFileDialog</name>
    <message>
        <source>Replace the file?</source>
        <translation>替换文件？</translation>
    </message>
    <message>
        <source>%1 exists already. Replace it?</source>
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
        <source>Program</source>
        <translation>程序</translation>
    </message>
    <message>
        <source>Recordings are kept in</source>
        <translation>录制保存在</translation>
    </message>
    <message>
        <source>%1 frames a second</source>
        <translation>每秒 %1 帧</translation>
    </message>
    <message>
        <source>At once</source>
        <translation>立即</translation>
    </message>
    <message>
        <source>After %1 s</source>
        <translation>%1 秒后</translation>
    </message>
    <message>
        <source>Folder for recordings</source>
        <translation>录制文件夹</translation>
    </message>
    <message>
        <source>They work whichever program is in use.</source>
        <translation>无论正在使用哪个程序都有效。</translation>
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
        <source>As the desktop</source>
        <translation>跟随桌面</translation>
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
        <source>The most important buttons</source>
        <translation>最重要的按钮</translation>
    </message>
    <message>
        <source>Another language is used from the next start on.</source>
        <translation>新语言将在下次启动时生效。</translation>
    </message>
    <message>
        <source>None</source>
        <translation>无</translation>
    </message>
    <message>
        <source>%1: no shortcut</source>
        <translation>%1：无快捷键</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>关闭(&amp;C)</translation>
    </message>
    <message>
        <source>Everything is saved already (Esc)</source>
        <translation>所有更改均已保存 (Esc)</translation>
    </message>
    <message>
        <source>&amp;Frame rate</source>
        <translation>帧率(&amp;F)</translation>
    </message>
    <message>
        <source>More frames show motion better and need more room</source>
        <translation>帧数越多，动作越流畅，占用空间越大</translation>
    </message>
    <message>
        <source>&amp;Start</source>
        <translation>开始(&amp;S)</translation>
    </message>
    <message>
        <source>Time to get ready after the record button</source>
        <translation>按下录制按钮后的准备时间</translation>
    </message>
    <message>
        <source>Record the &amp;mouse</source>
        <translation>录制鼠标(&amp;M)</translation>
    </message>
    <message>
        <source>Pointer, clicks and wheel, which can be hidden again later</source>
        <translation>指针、点击和滚轮，之后可再隐藏</translation>
    </message>
    <message>
        <source>Record the &amp;keys that are typed</source>
        <translation>录制键入的按键(&amp;K)</translation>
    </message>
    <message>
        <source>In whichever program; passwords, too</source>
        <translation>在任何程序中；包括密码</translation>
    </message>
    <message>
        <source>&amp;Ask before keys are recorded</source>
        <translation>录制按键前询问(&amp;A)</translation>
    </message>
    <message>
        <source>At the start of each recording with keys</source>
        <translation>每次录制按键开始时</translation>
    </message>
    <message>
        <source>C&amp;hange...</source>
        <translation>更改(&amp;H)...</translation>
    </message>
    <message>
        <source>Chooses another folder for recordings</source>
        <translation>另选录制文件夹</translation>
    </message>
    <message>
        <source>&amp;Default</source>
        <translation>默认(&amp;D)</translation>
    </message>
    <message>
        <source>Keeps recordings among your videos</source>
        <translation>将录制保存在视频文件夹中</translation>
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
        <source>Buttons that the toolbar shows</source>
        <translation>工具栏显示的按钮</translation>
    </message>
    <message>
        <source>Language of this program</source>
        <translation>本程序的语言</translation>
    </message>
    <message>
        <source>&amp;Language</source>
        <translation>语言(&amp;L)</translation>
    </message>
    <message>
        <source>Play with the &amp;graphics card</source>
        <translation>用显卡播放(&amp;G)</translation>
    </message>
    <message>
        <source>Recordings are decoded by the graphics card where it is able to</source>
        <translation>在显卡支持时由显卡解码录制</translation>
    </message>
    <message>
        <source>Press the keys that shall do it</source>
        <translation>请按下要使用的按键</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>声音</translation>
    </message>
</context>
<context>
    <name>SettingsSidebar</name>
    <message>
        <source>Settings of the picture and the sound</source>
        <translation>画面与声音设置</translation>
    </message>
    <message>
        <source>Pointer</source>
        <translation>指针</translation>
    </message>
    <message>
        <source>The pointer and its clicks</source>
        <translation>指针及其点击</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>按键</translation>
    </message>
    <message>
        <source>The keys that were pressed</source>
        <translation>按下的按键</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>时间</translation>
    </message>
    <message>
        <source>The time over the picture</source>
        <translation>画面上的时间</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>声音</translation>
    </message>
    <message>
        <source>What the computer played, and the microphone</source>
        <translation>电脑播放的声音与麦克风</translation>
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
        <source>Show the toolbar</source>
        <translation>显示工具栏</translation>
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
        <source>Recording starts</source>
        <translation>即将开始录制</translation>
    </message>
    <message>
        <source>Recording, %1</source>
        <translation>正在录制，%1</translation>
    </message>
    <message>
        <source>Recording paused, %1</source>
        <translation>录制已暂停，%1</translation>
    </message>
</context>
</TS>
