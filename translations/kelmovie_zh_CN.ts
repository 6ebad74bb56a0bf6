<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>AudioSettingsPanel</name>
    <message>
        <source>System audio</source>
        <translation>系统声音</translation>
    </message>
    <message>
        <source>Level of the system audio</source>
        <translation>系统声音的电平</translation>
    </message>
    <message>
        <source>There is no device that plays sound.</source>
        <translation>没有播放声音的设备。</translation>
    </message>
    <message>
        <source>Nothing is being played.</source>
        <translation>当前没有播放任何声音。</translation>
    </message>
    <message>
        <source>This recording has no system audio.</source>
        <translation>此录制没有系统声音。</translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>播放(&amp;P)</translation>
    </message>
    <message>
        <source>Plays and exports what the computer played</source>
        <translation>播放并导出电脑播放的声音</translation>
    </message>
    <message>
        <source>&amp;Mute</source>
        <translation>静音(&amp;M)</translation>
    </message>
    <message>
        <source>Silences the system audio for now</source>
        <translation>暂时将系统声音静音</translation>
    </message>
    <message>
        <source>&amp;Volume</source>
        <translation>音量(&amp;V)</translation>
    </message>
    <message>
        <source>How loud the system audio is played</source>
        <translation>系统声音的播放音量</translation>
    </message>
    <message>
        <source>&amp;Gain</source>
        <translation>增益(&amp;G)</translation>
    </message>
    <message>
        <source>Amplifies system audio that was recorded too quietly</source>
        <translation>放大录得过轻的系统声音</translation>
    </message>
    <message>
        <source>Microphone</source>
        <translation>麦克风</translation>
    </message>
    <message>
        <source>Level of the microphone</source>
        <translation>麦克风的电平</translation>
    </message>
    <message>
        <source>There is no microphone.</source>
        <translation>没有麦克风。</translation>
    </message>
    <message>
        <source>The microphone is silent.</source>
        <translation>麦克风没有声音。</translation>
    </message>
    <message>
        <source>This recording has no microphone sound.</source>
        <translation>此录制没有麦克风声音。</translation>
    </message>
    <message>
        <source>P&amp;lay</source>
        <translation>播放(&amp;L)</translation>
    </message>
    <message>
        <source>Plays and exports what the microphone recorded</source>
        <translation>播放并导出麦克风录下的声音</translation>
    </message>
    <message>
        <source>M&amp;ute</source>
        <translation>静音(&amp;U)</translation>
    </message>
    <message>
        <source>Silences the microphone for now</source>
        <translation>暂时将麦克风静音</translation>
    </message>
    <message>
        <source>V&amp;olume</source>
        <translation>音量(&amp;O)</translation>
    </message>
    <message>
        <source>How loud the microphone is played</source>
        <translation>麦克风声音的播放音量</translation>
    </message>
    <message>
        <source>Ga&amp;in</source>
        <translation>增益(&amp;I)</translation>
    </message>
    <message>
        <source>Amplifies what the microphone recorded too quietly</source>
        <translation>放大麦克风录得过轻的声音</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>录制</translation>
    </message>
    <message>
        <source>Record &amp;system audio</source>
        <translation>录制系统声音(&amp;S)</translation>
    </message>
    <message>
        <source>The next recording takes up what the computer plays</source>
        <translation>下次录制时录下电脑播放的声音</translation>
    </message>
    <message>
        <source>&amp;Record microphone</source>
        <translation>录制麦克风(&amp;R)</translation>
    </message>
    <message>
        <source>The next recording takes up what the microphone hears</source>
        <translation>下次录制时录下麦克风的声音</translation>
    </message>
    <message>
        <source>These take effect with the next recording.</source>
        <translation>这些设置从下次录制起生效。</translation>
    </message>
    <message>
        <source>&amp;Don't show again</source>
        <translation>不再显示(&amp;D)</translation>
    </message>
    <message>
        <source>Does not say this any more while recording</source>
        <translation>录制时不再提示</translation>
    </message>
</context>
<context>
    <name>CursorSettingsPanel</name>
    <message>
        <source>Pointer</source>
        <translation>指针</translation>
    </message>
    <message>
        <source>&amp;Show pointer</source>
        <translation>显示指针(&amp;S)</translation>
    </message>
    <message>
        <source>Shows the recorded pointer and its effects</source>
        <translation>显示录下的指针及其效果</translation>
    </message>
    <message>
        <source>&amp;Buttons</source>
        <translation>按键(&amp;B)</translation>
    </message>
    <message>
        <source>Clicks that are shown</source>
        <translation>要显示的点击</translation>
    </message>
    <message>
        <source>Left click</source>
        <translation>左键</translation>
    </message>
    <message>
        <source>Shows clicks of the left button</source>
        <translation>显示左键点击</translation>
    </message>
    <message>
        <source>Right click</source>
        <translation>右键</translation>
    </message>
    <message>
        <source>Shows clicks of the right button</source>
        <translation>显示右键点击</translation>
    </message>
    <message>
        <source>Middle click</source>
        <translation>中键</translation>
    </message>
    <message>
        <source>Shows clicks of the middle button</source>
        <translation>显示中键点击</translation>
    </message>
    <message>
        <source>Click &amp;effect</source>
        <translation>点击效果(&amp;E)</translation>
    </message>
    <message>
        <source>What a click looks like</source>
        <translation>点击的样子</translation>
    </message>
    <message>
        <source>None</source>
        <translation>无</translation>
    </message>
    <message>
        <source>Rays</source>
        <translation>光芒</translation>
    </message>
    <message>
        <source>Flower</source>
        <translation>花朵</translation>
    </message>
    <message>
        <source>Fireworks</source>
        <translation>烟花</translation>
    </message>
    <message>
        <source>Stars</source>
        <translation>星星</translation>
    </message>
    <message>
        <source>Ripple</source>
        <translation>波纹</translation>
    </message>
    <message>
        <source>Press</source>
        <translation>按压</translation>
    </message>
    <message>
        <source>&amp;Replace effects</source>
        <translation>替换效果(&amp;R)</translation>
    </message>
    <message>
        <source>A click ends the effect of the click before</source>
        <translation>新的点击会结束上一次点击的效果</translation>
    </message>
    <message>
        <source>Show &amp;wheel</source>
        <translation>显示滚轮(&amp;W)</translation>
    </message>
    <message>
        <source>Shows turns of the wheel</source>
        <translation>显示滚轮的转动</translation>
    </message>
    <message>
        <source>&amp;Color</source>
        <translation>颜色(&amp;C)</translation>
    </message>
    <message>
        <source>Color of the effects</source>
        <translation>效果的颜色</translation>
    </message>
    <message>
        <source>Si&amp;ze</source>
        <translation>大小(&amp;Z)</translation>
    </message>
    <message>
        <source>Size of the effects</source>
        <translation>效果的大小</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>录制</translation>
    </message>
    <message>
        <source>Record &amp;mouse</source>
        <translation>录制鼠标(&amp;M)</translation>
    </message>
    <message>
        <source>The next recording takes up the mouse</source>
        <translation>下次录制时录下鼠标</translation>
    </message>
</context>
<context>
    <name>EncodeFormatPanel</name>
    <message>
        <source>Export</source>
        <translation>导出</translation>
    </message>
    <message>
        <source>&amp;Format</source>
        <translation>格式(&amp;F)</translation>
    </message>
    <message>
        <source>Kind of file to export to</source>
        <translation>导出文件的类型</translation>
    </message>
    <message>
        <source>Video with sound; plays nearly everywhere</source>
        <translation>带声音的视频；几乎处处可播放</translation>
    </message>
    <message>
        <source>Animation with 256 colors, without sound; shown nearly everywhere</source>
        <translation>256 色动画，无声音；几乎处处可显示</translation>
    </message>
    <message>
        <source>Animation in all colors without loss, without sound</source>
        <translation>全彩无损动画，无声音</translation>
    </message>
    <message>
        <source>Animation in all colors in a small file, without sound</source>
        <translation>全彩小文件动画，无声音</translation>
    </message>
    <message>
        <source>Endlessly</source>
        <translation>无限循环</translation>
    </message>
    <message numerus="yes">
        <source>%n time(s)</source>
        <translation>
            <numerusform>%n 次</numerusform>
        </translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>播放(&amp;P)</translation>
    </message>
    <message>
        <source>How often an animation is played</source>
        <translation>动画播放的次数</translation>
    </message>
    <message>
        <source>&amp;Leave recording after export</source>
        <translation>导出后退出录制(&amp;L)</translation>
    </message>
    <message>
        <source>Leaves the recording mode when an export is complete</source>
        <translation>导出完成后退出录制模式</translation>
    </message>
</context>
<context>
    <name>kel::FloatPlaneFps</name>
    <message>
        <source>Frame rate</source>
        <translation>帧率</translation>
    </message>
</context>
<context>
    <name>kel::FloatPlanePlaySpeed</name>
    <message>
        <source>Play speed</source>
        <translation>播放速度</translation>
    </message>
</context>
<context>
    <name>kel::FloatPlaneRecordTime</name>
    <message>
        <source>Record delay</source>
        <translation>录制延时</translation>
    </message>
    <message>
        <source>No delay</source>
        <translation>无延时</translation>
    </message>
    <message>
        <source>-%1s</source>
        <translation>-%1秒</translation>
    </message>
</context>
<context>
    <name>GlobalShortcut</name>
    <message>
        <source>The keyboard has no such key.</source>
        <translation>键盘上没有这个键。</translation>
    </message>
    <message>
        <source>Another program uses it.</source>
        <translation>已被其他程序使用。</translation>
    </message>
    <message>
        <source>There is no X server to ask for it.</source>
        <translation>没有可用的 X 服务器。</translation>
    </message>
</context>
<context>
    <name>KelPlayCtrlWidget</name>
    <message>
        <source>Play time</source>
        <translation>播放时间</translation>
    </message>
    <message>
        <source>Play time and length of the recording</source>
        <translation>播放时间与录制总长</translation>
    </message>
</context>
<context>
    <name>KelPlayTimeLable</name>
    <message>
        <source>Play time</source>
        <translation>播放时间</translation>
    </message>
    <message>
        <source>Play time and length of the recording</source>
        <translation>播放时间与录制总长</translation>
    </message>
</context>
<context>
    <name>KelPlaybackExportDialog</name>
    <message>
        <source>Export Progress</source>
        <translation>导出进度</translation>
    </message>
    <message>
        <source>Progress of the export</source>
        <translation>导出的进度</translation>
    </message>
    <message>
        <source>Go on exporting with the window out of the way</source>
        <translation>最小化窗口，继续导出</translation>
    </message>
    <message>
        <source>Minimize</source>
        <translation>最小化</translation>
    </message>
    <message>
        <source>End the export and keep no file</source>
        <translation>停止导出，不保留文件</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>After the next recording, do not ask here</source>
        <translation>下次录制导出后不再询问</translation>
    </message>
    <message>
        <source>Auto-exit recording after encoding</source>
        <translation>编码完成后自动退出录制</translation>
    </message>
    <message>
        <source>Close this and leave the recording mode</source>
        <translation>关闭此窗口并退出录制模式</translation>
    </message>
    <message>
        <source>Exit Record</source>
        <translation>退出录制</translation>
    </message>
    <message>
        <source>Close this</source>
        <translation>关闭此窗口</translation>
    </message>
    <message>
        <source>Complete</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>Exporting...</source>
        <translation>正在导出...</translation>
    </message>
    <message>
        <source>Encoding completed.</source>
        <translation>编码完成。</translation>
    </message>
    <message>
        <source>Export Error</source>
        <translation>导出错误</translation>
    </message>
    <message>
        <source>Failed to mix audio and video tracks</source>
        <translation>音频与视频混合失败</translation>
    </message>
    <message>
        <source>Failed to generate video track</source>
        <translation>生成视频轨道失败</translation>
    </message>
    <message>
        <source>Export Complete</source>
        <translation>导出完成</translation>
    </message>
    <message>
        <source>Frame %1 of %2, about %3 left</source>
        <translation>第 %1 帧，共 %2 帧，约剩 %3</translation>
    </message>
    <message>
        <source>Frame %1 of %2, %3 so far</source>
        <translation>第 %1 帧，共 %2 帧，已用 %3</translation>
    </message>
    <message>
        <source>Finishing the file, about %1 left</source>
        <translation>正在完成文件，约剩 %1</translation>
    </message>
    <message>
        <source>Finishing the file, %1 so far</source>
        <translation>正在完成文件，已用 %1</translation>
    </message>
    <message>
        <source>Adding the sound, about %1 left</source>
        <translation>正在加入声音，约剩 %1</translation>
    </message>
    <message>
        <source>Adding the sound, %1 so far</source>
        <translation>正在加入声音，已用 %1</translation>
    </message>
    <message>
        <source>Saving the file, about %1 left</source>
        <translation>正在保存文件，约剩 %1</translation>
    </message>
    <message>
        <source>Saving the file, %1 so far</source>
        <translation>正在保存文件，已用 %1</translation>
    </message>
    <message>
        <source>The exported file lacks something</source>
        <translation>导出的文件不完整</translation>
    </message>
</context>
<context>
    <name>KelRecordButton</name>
    <message>
        <source>Start recording</source>
        <translation>开始录制</translation>
    </message>
    <message>
        <source>Stop recording</source>
        <translation>停止录制</translation>
    </message>
</context>
<context>
    <name>KelRecordFpsLabel</name>
    <message>
        <source>Frame rate</source>
        <translation>帧率</translation>
    </message>
    <message>
        <source>Frames recorded per second</source>
        <translation>每秒录制的帧数</translation>
    </message>
</context>
<context>
    <name>KelRecordPauseButton</name>
    <message>
        <source>Pause recording</source>
        <translation>暂停录制</translation>
    </message>
    <message>
        <source>Resume recording</source>
        <translation>继续录制</translation>
    </message>
</context>
<context>
    <name>KelRecordTimeLable</name>
    <message>
        <source>Recorded time</source>
        <translation>已录制时间</translation>
    </message>
    <message>
        <source>Recorded time. Click to set a delay before recording starts</source>
        <translation>已录制时间。点击可设置录制开始前的延时</translation>
    </message>
</context>
<context>
    <name>KeyboardSettingsPanel</name>
    <message>
        <source>Keys</source>
        <translation>按键</translation>
    </message>
    <message>
        <source>&amp;Show</source>
        <translation>显示(&amp;S)</translation>
    </message>
    <message>
        <source>Kinds of keys that are shown</source>
        <translation>要显示的按键种类</translation>
    </message>
    <message>
        <source>Character Keys</source>
        <translation>字符键</translation>
    </message>
    <message>
        <source>A-Z, 0-9</source>
        <translation>A-Z、0-9</translation>
    </message>
    <message>
        <source>Other Keys</source>
        <translation>其他键</translation>
    </message>
    <message>
        <source>F1-F12, ESC, TAB, SPACE, ENTER, ...</source>
        <translation>F1-F12、ESC、TAB、空格、回车等</translation>
    </message>
    <message>
        <source>Modifier Keys</source>
        <translation>修饰键</translation>
    </message>
    <message>
        <source>Ctrl, Shift, Alt, Win/Meta</source>
        <translation>Ctrl、Shift、Alt、Win/Meta</translation>
    </message>
    <message>
        <source>Combinations Keys</source>
        <translation>组合键</translation>
    </message>
    <message>
        <source>Several keys pressed together, as Ctrl+C</source>
        <translation>同时按下的几个键，如 Ctrl+C</translation>
    </message>
    <message>
        <source>Characters in a &amp;row</source>
        <translation>连续字符数(&amp;R)</translation>
    </message>
    <message>
        <source>Characters typed one after another that share a box</source>
        <translation>连续输入时共用一个方框的字符数</translation>
    </message>
    <message>
        <source>&amp;Keep for</source>
        <translation>保留时间(&amp;K)</translation>
    </message>
    <message>
        <source>How long a key stays after it was pressed</source>
        <translation>按键按下后显示多久</translation>
    </message>
    <message>
        <source>&amp;Position</source>
        <translation>位置(&amp;P)</translation>
    </message>
    <message>
        <source>Where the keys are shown</source>
        <translation>按键显示的位置</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>左</translation>
    </message>
    <message>
        <source>At the bottom left</source>
        <translation>左下方</translation>
    </message>
    <message>
        <source>Center</source>
        <translation>中</translation>
    </message>
    <message>
        <source>At the bottom in the middle</source>
        <translation>正下方</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>右</translation>
    </message>
    <message>
        <source>At the bottom right</source>
        <translation>右下方</translation>
    </message>
    <message>
        <source>Look</source>
        <translation>外观</translation>
    </message>
    <message>
        <source>&amp;Font</source>
        <translation>字体(&amp;F)</translation>
    </message>
    <message>
        <source>Font of the keys</source>
        <translation>按键的字体</translation>
    </message>
    <message>
        <source>Font si&amp;ze</source>
        <translation>字号(&amp;Z)</translation>
    </message>
    <message>
        <source>Size of the letters</source>
        <translation>文字的大小</translation>
    </message>
    <message>
        <source>Font &amp;color</source>
        <translation>文字颜色(&amp;C)</translation>
    </message>
    <message>
        <source>Color of the letters</source>
        <translation>文字的颜色</translation>
    </message>
    <message>
        <source>&amp;Background</source>
        <translation>背景(&amp;B)</translation>
    </message>
    <message>
        <source>Color of the boxes</source>
        <translation>方框的颜色</translation>
    </message>
    <message>
        <source>Earlier keys</source>
        <translation>先前的按键</translation>
    </message>
    <message>
        <source>&amp;Boxes</source>
        <translation>方框数(&amp;B)</translation>
    </message>
    <message>
        <source>How many boxes are shown at a time</source>
        <translation>同时显示的方框数</translation>
    </message>
    <message>
        <source>S&amp;maller by</source>
        <translation>缩小(&amp;M)</translation>
    </message>
    <message>
        <source>How much smaller the letters of earlier keys are</source>
        <translation>先前按键的文字缩小多少</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>录制</translation>
    </message>
    <message>
        <source>Record k&amp;eyboard</source>
        <translation>录制键盘(&amp;E)</translation>
    </message>
    <message>
        <source>The next recording takes up what is typed</source>
        <translation>下次录制时录下键入的内容</translation>
    </message>
</context>
<context>
    <name>PlayPauseButton</name>
    <message>
        <source>Play</source>
        <translation>播放</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>暂停</translation>
    </message>
</context>
<context>
    <name>PlayProgressBar</name>
    <message>
        <source>Play position</source>
        <translation>播放位置</translation>
    </message>
    <message>
        <source>Drag to seek, drag the ends to trim. Keys: arrows seek, I and O cut here</source>
        <translation>拖动以定位，拖动两端以裁剪。按键：方向键定位，I 和 O 在此处裁剪</translation>
    </message>
    <message>
        <source>Drag to seek, or use the arrow keys</source>
        <translation>拖动以定位，或使用方向键</translation>
    </message>
</context>
<context>
    <name>PlaySpeedLabel</name>
    <message>
        <source>Play speed</source>
        <translation>播放速度</translation>
    </message>
</context>
<context>
    <name>ProgressSettingsPanel</name>
    <message>
        <source>Progress</source>
        <translation>进度</translation>
    </message>
    <message>
        <source>&amp;Show progress</source>
        <translation>显示进度(&amp;S)</translation>
    </message>
    <message>
        <source>Shows over the picture how far it has come</source>
        <translation>在画面上显示播放进度</translation>
    </message>
    <message>
        <source>&amp;As</source>
        <translation>样式(&amp;A)</translation>
    </message>
    <message>
        <source>What the progress looks like</source>
        <translation>进度的样子</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>时间</translation>
    </message>
    <message>
        <source>A box with the elapsed and the total time</source>
        <translation>显示已播放时间和总时间的方框</translation>
    </message>
    <message>
        <source>Bar</source>
        <translation>进度条</translation>
    </message>
    <message>
        <source>A bar along the bottom edge</source>
        <translation>沿底边的进度条</translation>
    </message>
    <message>
        <source>&amp;Color</source>
        <translation>颜色(&amp;C)</translation>
    </message>
    <message>
        <source>Color of the played part of the bar</source>
        <translation>进度条已播放部分的颜色</translation>
    </message>
    <message>
        <source>&amp;Background</source>
        <translation>背景(&amp;B)</translation>
    </message>
    <message>
        <source>Color of the rest of the bar</source>
        <translation>进度条其余部分的颜色</translation>
    </message>
    <message>
        <source>Si&amp;ze</source>
        <translation>大小(&amp;Z)</translation>
    </message>
    <message>
        <source>Size of the time's letters; the bar is thinner</source>
        <translation>时间文字的大小；进度条较细</translation>
    </message>
    <message>
        <source>&amp;Round</source>
        <translation>圆角(&amp;R)</translation>
    </message>
    <message>
        <source>Radius of the corners</source>
        <translation>圆角的半径</translation>
    </message>
    <message>
        <source>S&amp;tep</source>
        <translation>步长(&amp;T)</translation>
    </message>
    <message>
        <source>The bar moves on once in this time at most</source>
        <translation>进度条在此时间内最多前进一次</translation>
    </message>
</context>
<context>
    <name>SaveQualityPanel</name>
    <message>
        <source>Quality</source>
        <translation>质量</translation>
    </message>
    <message>
        <source>&amp;Quality</source>
        <translation>质量(&amp;Q)</translation>
    </message>
    <message>
        <source>A better picture makes a larger file</source>
        <translation>画质越好，文件越大</translation>
    </message>
    <message>
        <source>Small file</source>
        <translation>小文件</translation>
    </message>
    <message>
        <source>Somewhat blurred, in a small file</source>
        <translation>略有模糊，文件小</translation>
    </message>
    <message>
        <source>Balanced</source>
        <translation>均衡</translation>
    </message>
    <message>
        <source>Hardly any loss, in a file of moderate size</source>
        <translation>几乎无损，文件适中</translation>
    </message>
    <message>
        <source>Best</source>
        <translation>最佳</translation>
    </message>
    <message>
        <source>As true as the format allows</source>
        <translation>格式所能达到的最佳还原</translation>
    </message>
    <message>
        <source>Estimated from samples of the recording</source>
        <translation>根据录制的样本估算</translation>
    </message>
    <message>
        <source>The size cannot be estimated.</source>
        <translation>无法估算大小。</translation>
    </message>
    <message>
        <source>Estimating the size...</source>
        <translation>正在估算大小...</translation>
    </message>
    <message>
        <source>About %1</source>
        <translation>约 %1</translation>
    </message>
    <message>
        <source>About %1 (%2 to %3)</source>
        <translation>约 %1（%2 至 %3）</translation>
    </message>
</context>
<context>
    <name>SettingTexts</name>
    <message>
        <source>%1 px</source>
        <translation>%1 像素</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 秒</translation>
    </message>
    <message>
        <source>%1 ms</source>
        <translation>%1 毫秒</translation>
    </message>
</context>
<context>
    <name>kel::SettingsForm</name>
    <message>
        <source>The settings cannot be saved. Changes last until the program ends.</source>
        <translation>无法保存设置。更改仅在程序退出前有效。</translation>
    </message>
</context>
</TS>
